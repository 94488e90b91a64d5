#pragma once

#include <QFile>

#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

/// A disk of its own below a folder, with little space. Other programs do not see it. Create it before other threads exist.
class SmallDisk
{
public:
    explicit SmallDisk(const QString& folder)
        : m_folder(QFile::encodeName(folder))
        , m_isThere(::unshare(CLONE_NEWNS) == 0
              && ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 && Mount(0, "size=64k"))
    {
    }
    ~SmallDisk() { ::umount2(m_folder.constData(), MNT_DETACH); }
    Q_DISABLE_COPY(SmallDisk)

    /// @return false where this program may not mount disks.
    bool IsThere() const { return m_isThere; }
    bool Grow() const { return Mount(MS_REMOUNT, "size=16m"); }

private:
    bool Mount(unsigned long flags, const char* options) const
    {
        return ::mount("none", m_folder.constData(), "tmpfs", flags, options) == 0;
    }

    QByteArray m_folder;
    bool m_isThere;
};

/// Folders to which this program, even as root, may not write until Allow() or the end of the scope.
class ForbiddenFolder
{
public:
    /// @param folder exists.
    /// @param parents of it, which this program still needs.
    ForbiddenFolder(const QString& folder, const QStringList& parents)
        : m_folder(folder)
    {
        constexpr uid_t Nobody = 65534;
        if (::geteuid() == 0) {
            const QStringList folders = parents + QStringList {folder};
            for (const QString& path : folders)
                m_isReady = ::chown(QFile::encodeName(path).constData(), Nobody, gid_t(-1)) == 0 && m_isReady;
            m_isReady = m_isReady && ::seteuid(Nobody) == 0;
        }
        m_isReady = m_isReady && QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner);
    }
    ~ForbiddenFolder()
    {
        Allow();
        if (::getuid() == 0)
            m_isReady = ::seteuid(0) == 0;
    }
    Q_DISABLE_COPY(ForbiddenFolder)

    bool IsReady() const { return m_isReady; }
    bool Allow() const
    {
        return QFile::setPermissions(m_folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

private:
    QString m_folder;
    bool m_isReady = true;
};
