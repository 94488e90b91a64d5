#pragma once

#include "farm/uploads/package_reader.h"

#include <functional>

namespace farm {

/// Called during long work; returning false interrupts it.
using GoesOn = std::function<bool()>;

/// Provides a file under a second name that does not exist yet: shares its blocks where the disk can, else its whole inode
/// if `mayLink` allows that, and otherwise copies it. A linked file is made read-only, as both names then have one content.
/// @return the checksum of the bytes. Throws DiskError, Interrupted and std::runtime_error.
QString ShareFile(const QString& from, const QString& to, bool mayLink, const GoesOn& goesOn);

} // namespace farm
