#pragma once

#include <QString>

namespace farm {

/// The most bytes that a path from outside may have.
constexpr int LongestSafePath = 1024;

/// Whether a path from outside can be used below a folder: it is relative, its parts are separated by `/`, none of them
/// is empty, `.` or `..`, it has no drive, backslash or control character, and it is not longer than file systems allow
/// (255 bytes per part, 64 parts, LongestSafePath in all).
bool IsSafePath(const QString& path);

} // namespace farm
