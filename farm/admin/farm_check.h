#pragma once

#include "farm/base/schema.h"

#include <QDir>

namespace farm {

/// Compares the farm's records with each other and with its files, and returns a sentence for each fault. Reads the
/// records as they are at one moment, so a farm may be running; takes minutes for a database of gigabytes.
QStringList FindFaults(SQLite::Database& connection, const QDir& dataFolder);

} // namespace farm
