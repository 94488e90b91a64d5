#pragma once

#include <QString>

/// Waits until a file and its place in the folders above it are on the disk, so that both survive a power cut.
/// @return false when the disk reported an error or the file is not there.
bool VTSyncToDisk(const QString& strPath);
