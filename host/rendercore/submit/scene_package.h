#pragma once

#include <QString>

#include <functional>

/// Packs one file into a ZIP archive of its own. Equal content under equal paths gives equal archives.
/// Throws std::runtime_error, with an English sentence, when the file cannot be read or the archive cannot be written.
/// @param path of the file inside the archive.
/// @param onBytes is called with the number of bytes read since the last call; returning false ends the packing early,
/// without an archive.
/// @return false when it was ended early.
bool PackFile(const QString& source, const QString& path, const QString& archive,
    const std::function<bool(qint64)>& onBytes);

/// The SHA-256 of the content of an archive's only file. Throws std::runtime_error when it cannot be read.
/// @param onBytes is called with the number of bytes read since the last call; returning false ends the reading early,
/// with an empty result.
QString PackedChecksum(const QString& archive, const std::function<bool(qint64)>& onBytes);
