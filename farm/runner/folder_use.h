#pragma once

#include <QString>

#include <cstdint>

namespace farm {

/// The disk space that the files in a folder and its subfolders take.
struct FolderUse
{
    std::int64_t bytes = 0;
    int entries = 0; ///< files and folders; counting stops above `MostEntries`
};

constexpr int MostEntries = 100'000;

/// Other processes may change the folder meanwhile. Links are not followed.
FolderUse MeasureFolder(const QString& path);

/// Removes the files in a folder and its subfolders, as far as they can be removed; the folders stay.
void RemoveFiles(const QString& path);

} // namespace farm
