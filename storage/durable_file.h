#pragma once

#include <QString>

#include <functional>

namespace storage {

/// Returns when the file or folder is on the disk. Throws std::runtime_error.
void SyncToDisk(const QString& path);

/// Gives a complete file its final name, in place of a file that may have it already; both names are in one folder.
/// The file and its name are on the disk when it returns. Throws std::runtime_error.
void RenameDurably(const QString& from, const QString& to);

/// The SHA-256 of a file as 64 lower-case hexadecimal digits. Throws std::runtime_error when it cannot be read.
/// @param onBytes is told how many bytes have been read since it was last called; false ends the reading early, with an
/// empty result.
QString FileChecksum(const QString& path, const std::function<bool(qint64)>& onBytes = {});

/// Whether the text is such a checksum.
bool IsChecksum(const QString& text);

} // namespace storage
