#pragma once

#include <QString>

class VTSettingsInterface;

/// The folder for an account's finished frames: the one that the user chose for it, otherwise the one set for all
/// accounts, otherwise one below the desktop's folder for downloads.
namespace DownloadFolder {

/// The key of an account's setting.
QString Key(const QString& userName);

/// @return an absolute path.
QString Of(VTSettingsInterface* settings, const QString& userName);

/// Creates the folder if it is missing.
/// @return why nothing can be saved there; empty when files can.
QString Trouble(const QString& folder);

} // namespace DownloadFolder
