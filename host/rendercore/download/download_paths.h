#pragma once

#include <QString>

/// Where downloaded files go. The names come from the farm and are never taken for paths.
namespace DownloadPaths {

/// The name as one path component that a file system takes: VTFileNamePart(), not empty, not hidden and not too long.
QString SafeComponent(const QString& name);

/// "<root>/<subDir>/<name>", each of the latter made one safe component.
/// @param copy from 2 on, for a name that is taken: it goes before the suffix.
QString Destination(const QString& root, const QString& subDir, const QString& name, int copy = 1);

/// The last component of a destination, as Destination() makes it.
QString FileName(const QString& name, int copy);

/// Whether there is anything at that path, be it a link that leads nowhere.
bool IsOccupied(const QString& path);

/// The hidden file beside a destination that holds it as far as it has come.
QString PartFile(const QString& destination);

/// Makes the folder of a destination.
/// @return why nothing can be written there, for people; empty when all is well. A folder that leads out of the root by
/// a symbolic link is refused.
QString PrepareFolder(const QString& destination);

} // namespace DownloadPaths
