#pragma once

#include <QString>

class VTSettingsInterface;

/// Where an account's finished frames go: as the user chose, else below the desktop's folder for downloads.
namespace DownloadFolder {

QString SettingKey(const QString& userName);

/// @return an absolute path.
QString Of(VTSettingsInterface* settings, const QString& userName);

} // namespace DownloadFolder
