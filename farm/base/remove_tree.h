#pragma once

#include <QString>

#include <functional>

namespace farm {

/// Removes a file, or a folder with everything in it. Copes with whatever a renderer leaves: folders without
/// permissions, names in no encoding, folders nested deeper than the longest path. Links are removed and never
/// followed. Returns false when `goesOn` stopped it, or when something could not be removed; everything else is removed
/// then. Returns true when there was nothing to remove.
bool RemoveTree(
    const QString& path, const std::function<bool()>& goesOn = [] { return true; });

} // namespace farm
