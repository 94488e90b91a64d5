#pragma once

#include <QString>

/// The keys of the settings store that the host reads and writes. The plugin reads some of them by contract.
namespace SettingKeys {

const QLatin1String Skin("vtr.ui/skin");
const QLatin1String Language("vtr.ui/language");         ///< bare file name, for example "vtr_en.qm"
const QLatin1String WindowPlace("vtr.ui/place");         ///< geometry of the main window in its normal size
const QLatin1String WindowMaximized("vtr.ui/maximized"); ///< whether the main window is maximised
const QLatin1String Tab("vtr.ui/tab");                   ///< index of the main window's current tab
const QLatin1String TrayTold("vtr.ui/traytold");    ///< whether the user knows where a closed window goes
const QLatin1String ServerUrl("vtr.web/serverurl"); ///< empty for the embedded farm
const QLatin1String ServerName("vtr.web/currentserver"); ///< the server's name in the window
const QLatin1String PlainServers(
    "vtr.web/plainservers"); ///< servers to which the user lets passwords go unencrypted
const QLatin1String LastName("vtr.auth/lastname");          ///< user name of the last sign-in
const QLatin1String DownloadFolder("vtr.downloads/folder"); ///< folder of accounts that have chosen none

/// @return the key of an account's own setting, for example "autodownload".
inline QString OfAccount(const QString& userName, const char* setting)
{
    return QLatin1String("vtr.account.") + userName + QLatin1Char('/') + QLatin1String(setting);
}

} // namespace SettingKeys
