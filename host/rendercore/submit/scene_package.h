#pragma once

#include <QString>

#include <functional>

/// Packs one file into a ZIP archive of its own. Equal files of one path give equal archives.
/// Throws std::runtime_error, with an English sentence, when the file cannot be read or the archive not written.
/// @param path of the file inside the archive.
/// @param onBytes is told how many bytes of the file have been read since it was last called; false ends it early and
/// leaves no archive.
/// @return false when it was ended early.
bool PackFile(const QString& source, const QString& path, const QString& archive,
    const std::function<bool(qint64)>& onBytes);

/// The SHA-256 of what the archive's only file holds, read back from the archive.
/// Throws std::runtime_error when it cannot be read.
/// @param onBytes is told how many bytes have been read since it was last called; false ends the reading early, with
/// an empty result.
QString PackedChecksum(const QString& archive, const std::function<bool(qint64)>& onBytes);
