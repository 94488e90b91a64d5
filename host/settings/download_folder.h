#pragma once

#include <QString>

class VTSettingsInterface;

/// Decides where an account's finished frames are saved: in the folder that its user chose, else in the one set for all
/// accounts, else below the desktop's folder for downloads.
namespace DownloadFolder {

/// The setting of one account.
QString Key(const QString& userName);

/// @return an absolute path.
QString Of(VTSettingsInterface* settings, const QString& userName);

/// Creates the folder if it is missing.
/// @return why nothing can be saved there; empty when files can.
QString Trouble(const QString& folder);

} // namespace DownloadFolder
