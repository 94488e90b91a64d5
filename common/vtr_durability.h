#pragma once

#include <QString>

/// Waits until a file and its entries in the folders above it are on the disk, so that they survive a power cut.
/// @return false if the disk reports an error or the file does not exist.
bool VTSyncToDisk(const QString& strPath);
