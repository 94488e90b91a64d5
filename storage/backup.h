#pragma once

#include <QString>

#include <SQLiteCpp/SQLiteCpp.h>

namespace storage {

/// Writes a copy of the database, as it is at one moment, to a file that is complete and on the disk as soon as it has
/// this name. Others may read and write the database meanwhile. Replaces an earlier file.
/// Throws SQLite::Exception, and DiskError when the disk is full.
void BackUp(SQLite::Database& source, const QString& file);

} // namespace storage
