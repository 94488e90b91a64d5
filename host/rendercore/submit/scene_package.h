#pragma once

#include <QString>
#include <QVector>

#include <functional>

/// A file of a package.
struct PackageEntry
{
    QString source; ///< absolute path on this machine
    QString path;   ///< inside the archive
    QString
        checksum; ///< SHA-256 of the packed content, set by PackFiles(); the source may change at any time
};

enum class Compression { None, WhereItHelps };

/// Packs files into one ZIP archive. Equal contents under equal paths give equal archives. A content that does not shrink
/// is stored as it is.
/// Throws TaskFailure, with the name of the file on a line of its own, when a file cannot be read or the archive cannot be
/// written.
/// @param onBytes is called with the number of bytes read since the last call; returning false ends the packing early,
/// without an archive.
/// @return false when it was ended early.
bool PackFiles(QVector<PackageEntry>& entries, const QString& archive, Compression compression,
    const std::function<bool(qint64)>& onBytes);
