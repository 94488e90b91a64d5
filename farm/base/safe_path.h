#pragma once

#include <QString>

namespace farm {

/// The most bytes that a path from outside may have.
constexpr int LongestSafePath = 1024;

/// Whether a path from outside can be used below a folder: relative, its parts separated by `/` and none of them empty,
/// `.` or `..`, without a drive, backslashes and control characters, and not longer than file systems allow (255 bytes
/// per part, 64 parts, LongestSafePath in all).
bool IsSafePath(const QString& path);

} // namespace farm
