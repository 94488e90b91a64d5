#pragma once

#include <QString>

class VTSettingsInterface;

/// Where an account's finished frames go: as its user chose, else as is set for all accounts, else below the desktop's
/// folder for downloads.
namespace DownloadFolder {

QString SettingKey(const QString& userName);

/// The setting for all accounts.
QString UsualKey();

/// @return an absolute path.
QString Of(VTSettingsInterface* settings, const QString& userName);

} // namespace DownloadFolder
