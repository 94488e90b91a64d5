#pragma once

#include <QString>

#include <exception>

namespace storage {

/// @return whether the error says that a disk, or the user's quota on it, is full.
bool IsDiskFull(const std::exception& error);

/// @return whether the disk of the folder has no room for that many bytes.
bool LacksRoom(const QString& folder, qint64 bytes);

/// Throws DiskError after a function failed to write a file below `folder` without telling why.
/// @param bytes is the number of bytes that had to be written.
[[noreturn]] void ThrowWriteError(const char* what, const QString& folder, qint64 bytes);

} // namespace storage
