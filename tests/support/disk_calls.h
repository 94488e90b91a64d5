#pragma once

#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include <atomic>
#include <cerrno>
#include <mutex>
#include <sys/statfs.h>
#include <sys/statvfs.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

/// The calls with which this program puts changes on the disk, in order: "sync <file name>", "sync all" and
/// "rename <new file name>". Use TakeDiskCalls() while other threads write.
inline QStringList diskCalls;
/// Makes syncing fail, as on a broken disk.
inline std::atomic<bool> diskFails = false;
/// The bytes that all disks have left; -1 for as many as they have.
inline std::atomic<qint64> diskFree = -1;
/// All disks are full while this file exists. Set it while no other thread writes.
inline QString diskFiller;
/// Makes syncing the file of this name fail, as on a full disk. Set it while no other thread writes.
inline QString fullFile;
/// Makes removing the file of this name fail. Set it while no other thread removes files.
inline QString stuckFile;
/// How syncing `fullFile` fails; 0 when it does not.
inline std::atomic<int> fullError = ENOSPC;

namespace disk_calls {

inline std::mutex lock;

inline void Record(const QString& call)
{
    const std::lock_guard<std::mutex> locked(lock);
    diskCalls.append(call);
}

inline int Sync(int file, long call)
{
    const QString path = QFileInfo(QStringLiteral("/proc/self/fd/%1").arg(file)).symLinkTarget();
    Record(QStringLiteral("sync ") + QFileInfo(path).fileName());
    const bool isFull = !fullFile.isEmpty() && path.endsWith(fullFile) && fullError != 0;
    errno = isFull ? int(fullError) : EIO;
    return diskFails || isFull ? -1 : int(::syscall(call, file));
}

} // namespace disk_calls

/// Returns and clears the recorded calls.
inline QStringList TakeDiskCalls()
{
    const std::lock_guard<std::mutex> locked(disk_calls::lock);
    return std::exchange(diskCalls, QStringList());
}

// These replace the C library's functions in the whole test program, libraries included. Include this header in one source
// of a test program only.
extern "C" {
__attribute__((visibility("default"))) int fsync(int file)
{
    return disk_calls::Sync(file, SYS_fsync);
}
__attribute__((visibility("default"))) int fdatasync(int file)
{
    return disk_calls::Sync(file, SYS_fdatasync);
}
__attribute__((visibility("default"))) int syncfs(int file) noexcept
{
    disk_calls::Record(QStringLiteral("sync all"));
    errno = EIO;
    return diskFails ? -1 : int(::syscall(SYS_syncfs, file));
}
__attribute__((visibility("default"))) int rename(const char* from, const char* to) noexcept
{
    disk_calls::Record(QStringLiteral("rename ") + QFileInfo(QFile::decodeName(to)).fileName());
    return int(::syscall(SYS_rename, from, to));
}
__attribute__((visibility("default"))) int unlinkat(int folder, const char* name, int flags) noexcept
{
    errno = EPERM;
    return stuckFile == QLatin1String(name) ? -1 : int(::syscall(SYS_unlinkat, folder, name, flags));
}
__attribute__((visibility("default"))) int statvfs(const char* path, struct statvfs* disk) noexcept
{
    struct statfs found = {};
    const int result = ::statfs(path, &found);
    disk->f_blocks = found.f_blocks;
    const bool isFilled = !diskFiller.isEmpty() && QFileInfo::exists(diskFiller);
    const qint64 left = isFilled ? 0 : qint64(diskFree);
    disk->f_frsize = left < 0 ? static_cast<unsigned long>(found.f_frsize) : 1;
    disk->f_bavail = left < 0 ? found.f_bavail : static_cast<fsblkcnt_t>(left);
    return result;
}
// Qt calls this one; the structures are the same on 64-bit systems.
__attribute__((visibility("default"))) int statvfs64(const char* path, struct statvfs64* disk) noexcept
{
    return statvfs(path, reinterpret_cast<struct statvfs*>(disk));
}
}
