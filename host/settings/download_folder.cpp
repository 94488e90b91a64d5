#include "host/settings/download_folder.h"

#include "host/settings/setting_keys.h"
#include "storage/folder_check.h"
#include "vtr_settingsinterface.h"

#include <QDir>
#include <QStandardPaths>

namespace DownloadFolder {

QString Key(const QString& userName)
{
    return SettingKeys::OfAccount(userName, "downloadfolder");
}

QString Of(VTSettingsInterface* settings, const QString& userName)
{
    for (const QString& key : {Key(userName), QString(SettingKeys::DownloadFolder)}) {
        const QString folder = settings->Value(key, {}).toString();
        if (QDir::isAbsolutePath(folder))
            return QDir::cleanPath(folder);
    }
    return QStandardPaths::writableLocation(QStandardPaths::DownloadLocation) + QLatin1String("/QuillStar");
}

QString Trouble(const QString& folder)
{
    const int error = storage::FolderError(folder);
    return error == 0 ? QString() : qt_error_string(error);
}

} // namespace DownloadFolder
