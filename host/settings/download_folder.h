#pragma once

#include <QString>

class VTSettingsInterface;

/// Decides where an account's finished frames are saved: in the folder that its user chose, else in the one set for all
/// accounts, else below the desktop's folder for downloads.
namespace DownloadFolder {

QString SettingKey(const QString& userName);

/// The setting for all accounts.
QString UsualKey();

/// @return an absolute path.
QString Of(VTSettingsInterface* settings, const QString& userName);

} // namespace DownloadFolder
