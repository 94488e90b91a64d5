#pragma once

#include <QString>

#include <functional>

namespace farm {

/// Removes a file, or a folder with everything in it, whatever a renderer has left there: folders without permissions,
/// names that are no text, folders nested deeper than any path is long. Links are removed and never followed.
/// Returns false when `goesOn` has stopped it, or when something cannot be removed, which keeps nothing else; true also when
/// there is nothing.
bool RemoveTree(
    const QString& path, const std::function<bool()>& goesOn = [] { return true; });

} // namespace farm
