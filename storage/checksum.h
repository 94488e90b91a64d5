#pragma once

#include <QString>

#include <functional>

/// Checksums are SHA-256 as 64 lower-case hexadecimal digits.
namespace storage {

/// Reads the whole file. Throws std::runtime_error when it cannot be read.
/// @param onBytes gets the number of bytes read since the previous call; when it returns false, reading stops and the
/// result is empty.
QString FileChecksum(const QString& path, const std::function<bool(qint64)>& onBytes = {});

/// Whether the text has the form of a checksum.
bool IsChecksum(const QString& text);

} // namespace storage
