#pragma once

#include <QString>

/// Shows a file in the system's file manager, selected. Does nothing for an empty path.
void VTRevealFile(const QString& strPath);
