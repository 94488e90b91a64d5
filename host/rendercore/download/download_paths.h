#pragma once

#include <QString>

/// Paths of downloaded files. Names that come from the farm are never used as paths.
namespace DownloadPaths {

/// Turns a name into one path component: VTFileNamePart(), neither empty nor hidden nor too long for a file system.
QString SafeComponent(const QString& name);

/// "<root>/<subDir>/<name>", with `subDir` and `name` turned into safe components.
/// @param copy from 2 on: a number that goes before the suffix, for a name that is in use.
QString Destination(const QString& root, const QString& subDir, const QString& name, int copy = 1);

/// The last component of Destination().
QString FileName(const QString& name, int copy);

/// Whether anything is at that path, even a dangling symbolic link.
bool IsOccupied(const QString& path);

/// The hidden file beside a destination that holds the data received so far.
QString PartFile(const QString& destination);

/// Moves the data received so far to a new destination if a rename is enough, and deletes them otherwise.
void MovePart(const QString& from, const QString& to);

/// Whether the folder of a destination leads out of the download folder by a symbolic link.
bool LeadsOut(const QString& destination);

/// The download folder that holds the destination's folder.
QString Root(const QString& destination);

} // namespace DownloadPaths
