#pragma once

#include <QString>

#include <cstdint>

namespace storage {

/// Creates the folder if it is missing, and a temporary file in it.
/// @return 0 when files can be written there, otherwise the `errno` of the failure.
int FolderError(const QString& folder);

/// @return the bytes that this user can still write to the folder's disk; -1 where that is unknown.
std::int64_t FreeBytes(const QString& folder);

} // namespace storage
