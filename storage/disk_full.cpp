#include "storage/disk_full.h"

#include "storage/durable_file.h"

#include <QStorageInfo>
#include <SQLiteCpp/Exception.h>

#include <cerrno>
#include <sqlite3.h>

namespace storage {

bool IsDiskFull(const std::exception& error)
{
    if (const auto* disk = dynamic_cast<const DiskError*>(&error))
        return disk->Error() == ENOSPC || disk->Error() == EDQUOT;
    const auto* database = dynamic_cast<const SQLite::Exception*>(&error);
    return database && database->getErrorCode() == SQLITE_FULL;
}

bool LacksRoom(const QString& folder, qint64 bytes)
{
    constexpr qint64 Reserve = 1024 * 1024; // bytes that the file system needs for itself
    const QStorageInfo disk(folder);
    return disk.isValid() && disk.bytesAvailable() < bytes + Reserve;
}

void ThrowWriteError(const char* what, const QString& folder, qint64 bytes)
{
    throw DiskError(what, LacksRoom(folder, bytes) ? ENOSPC : EIO);
}

} // namespace storage
