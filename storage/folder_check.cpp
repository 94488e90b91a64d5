#include "storage/folder_check.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstdlib>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace storage {

namespace {

/// @return why the topmost missing folder of the path cannot be created.
int CreationError(const QString& folder)
{
    QString missing = QDir::cleanPath(folder);
    if (missing.isEmpty())
        return ENOENT;
    while (!QFileInfo::exists(QFileInfo(missing).path()))
        missing = QFileInfo(missing).path();
    constexpr int All = 0777;
    if (::mkdir(QFile::encodeName(missing).constData(), All) == 0)
        return 0;
    return errno == EEXIST ? ENOTDIR : errno;
}

} // namespace

int FolderError(const QString& folder)
{
    if (!QDir().mkpath(folder)) {
        const int error = CreationError(folder);
        return error == 0 ? ENOENT : error;
    }
    QByteArray name = QFile::encodeName(folder) + "/.quillstar-XXXXXX";
    const int file = ::mkstemp(name.data());
    if (file < 0)
        return errno;
    const int error = ::write(file, "x", 1) == 1 ? 0 : errno;
    ::close(file);
    ::unlink(name.constData());
    return error;
}

std::int64_t FreeBytes(const QString& folder)
{
    struct statvfs disk = {};
    if (::statvfs(QFile::encodeName(folder).constData(), &disk) != 0 || disk.f_blocks == 0)
        return -1;
    return static_cast<std::int64_t>(disk.f_bavail) * static_cast<std::int64_t>(disk.f_frsize);
}

} // namespace storage
