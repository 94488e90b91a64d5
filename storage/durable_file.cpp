#include "storage/durable_file.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace storage {

namespace {

// Without the folder: the farm's messages reach its clients, which need not know where it keeps its files.
std::string NameOf(const QString& path)
{
    return QFileInfo(path).fileName().toStdString();
}

bool WriteAndSync(int file, std::int64_t offset, const QByteArray& bytes)
{
    int written = 0;
    while (written < bytes.size()) {
        const ssize_t count = ::pwrite(file, bytes.constData() + written,
            static_cast<std::size_t>(bytes.size() - written), off_t(offset + written));
        if (count <= 0) {
            errno = count == 0 ? ENOSPC : errno;
            return false;
        }
        written += static_cast<int>(count);
    }
    return ::fsync(file) == 0;
}

} // namespace

void SyncToDisk(const QString& path)
{
    const int file = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    const bool synced = file >= 0 && ::fsync(file) == 0;
    const int error = errno;
    if (file >= 0)
        ::close(file);
    if (!synced)
        throw DiskError("cannot write " + NameOf(path) + " to the disk", error);
}

void RenameDurably(const QString& from, const QString& to)
{
    SyncToDisk(from);
    // QFile::rename() does not replace a file.
    if (std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) != 0)
        throw DiskError("cannot rename " + NameOf(from) + " to " + NameOf(to), errno);
    // The new name is on the disk only after the folder has been synced.
    SyncToDisk(QFileInfo(to).path());
}

void AppendDurably(const QString& path, std::int64_t offset, const QByteArray& bytes)
{
    const int file
        = ::open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    const bool done = file >= 0 && WriteAndSync(file, offset, bytes);
    const int error = errno;
    if (file >= 0 && !done && ::ftruncate(file, off_t(offset)) != 0)
        QFile::remove(path);
    if (file >= 0)
        ::close(file);
    if (!done)
        throw DiskError("cannot append to " + NameOf(path), error);
    // A new file is on the disk only after its folder has been synced.
    if (offset == 0)
        SyncToDisk(QFileInfo(path).path());
}

} // namespace storage
