#pragma once

#include "farm/uploads/package_reader.h"

#include <functional>

namespace farm {

/// Called during long work; returning false interrupts it.
using GoesOn = std::function<bool()>;

/// Provides a file under a second name that does not exist yet: as a reflink where the disk can, else as a hard link if
/// `mayLink` allows that, and otherwise as a copy. A linked file is made read-only, because both names share its
/// content.
/// @return the checksum of the bytes. Throws DiskError, Interrupted and std::runtime_error.
QString ShareFile(const QString& from, const QString& to, bool mayLink, const GoesOn& goesOn);

} // namespace farm
