#pragma once

#include <QString>

namespace farm {

/// Whether a path that came from outside can be used below a folder: relative, with `/` between parts that name
/// something (no `.`, no `..`), without a drive, backslashes and control characters, and not longer than file systems
/// allow (255 bytes a part, 1024 in all).
constexpr int LongestSafePath = 1024;
bool IsSafePath(const QString& path);

} // namespace farm
