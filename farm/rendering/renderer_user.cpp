#include "farm/rendering/renderer_user.h"

#include <QDirIterator>
#include <QFile>

#include <cerrno>
#include <cstring>
#include <pwd.h>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>

namespace farm {

namespace {

constexpr mode_t PassOnly = 0711;
constexpr mode_t ReadableFolder = 0755;
constexpr mode_t ReadOnly = 0444;
constexpr mode_t Private = 0600;

void Require(int result, const QString& path)
{
    if (result != 0)
        throw std::runtime_error(
            "cannot change the permissions of " + path.toStdString() + ": " + std::strerror(errno));
}

void SetMode(const QString& path, mode_t mode)
{
    Require(::chmod(QFile::encodeName(path).constData(), mode), path);
}

void SetOwner(const QString& path, uid_t user, gid_t group)
{
    Require(::lchown(QFile::encodeName(path).constData(), user, group), path);
}

} // namespace

RendererUser::RendererUser(const QString& name)
    : m_name(name)
{
    if (name.isEmpty())
        return;
    if (::geteuid() != 0)
        throw std::runtime_error("only a farm that runs as root can run renderers as another user");
    const passwd* const user = ::getpwnam(QFile::encodeName(name).constData());
    if (user == nullptr)
        throw std::runtime_error("there is no user " + name.toStdString() + " to run renderers");
    if (user->pw_uid == 0)
        throw std::runtime_error("renderers need a user other than root");
    m_user = user->pw_uid;
    m_group = user->pw_gid;
}

void RendererUser::LetPass(const QString& folder) const
{
    if (!m_name.isEmpty())
        SetMode(folder, PassOnly);
}

void RendererUser::LetRead(const QString& folder) const
{
    if (m_name.isEmpty())
        return;
    QDirIterator entries(folder, QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System,
        QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        entries.next();
        SetMode(entries.filePath(), entries.fileInfo().isDir() ? ReadableFolder : ReadOnly);
    }
    SetMode(folder, ReadableFolder);
}

void RendererUser::Give(const QString& folder) const
{
    if (!m_name.isEmpty())
        SetOwner(folder, m_user, m_group);
}

void RendererUser::TakeBack(const QString& file) const
{
    if (m_name.isEmpty())
        return;
    SetOwner(file, ::geteuid(), ::getegid());
    SetMode(file, Private);
}

} // namespace farm
