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

// The name without its folder: the farm's messages reach its clients, which need not know where it keeps its files.
std::string NameOf(const QString& path)
{
    return QFileInfo(path).fileName().toStdString();
}

template <typename Call>
void Sync(const QString& path, Call call)
{
    const int file = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    const bool synced = file >= 0 && call(file) == 0;
    const int error = errno;
    if (file >= 0)
        ::close(file);
    if (!synced)
        throw DiskError("cannot write " + NameOf(path) + " to the disk", error);
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
    Sync(path, ::fsync);
}

void RenameDurably(const QString& from, const QString& to)
{
    RenameAllDurably({{to, from}});
}

// Syncing files one by one makes the disk finish its journal for each of them, syncing them together only once.
void SyncAllToDisk(const QStringList& paths)
{
    constexpr int MostAlone = 8;
    if (paths.size() <= MostAlone) {
        for (const QString& path : paths)
            SyncToDisk(path);
        return;
    }
    Sync(paths.first(), ::syncfs);
}

void RenameAllDurably(const QMap<QString, QString>& fromByTo)
{
    SyncAllToDisk(fromByTo.values());
    QStringList folders;
    for (auto file = fromByTo.cbegin(); file != fromByTo.cend(); ++file) {
        // QFile::rename() does not replace a file.
        if (std::rename(QFile::encodeName(*file).constData(), QFile::encodeName(file.key()).constData()) != 0)
            throw DiskError("cannot rename " + NameOf(*file) + " to " + NameOf(file.key()), errno);
        folders.append(QFileInfo(file.key()).path());
    }
    // The new names are on the disk only after their folders have been synced.
    folders.removeDuplicates();
    SyncAllToDisk(folders);
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
