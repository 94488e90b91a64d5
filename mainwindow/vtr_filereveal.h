#pragma once

#include <QString>

/// Shows a file selected in the system's file manager; nothing happens for an empty path.
void VTRevealFile(const QString& strPath);
