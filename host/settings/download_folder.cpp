#include "host/settings/download_folder.h"

#include "vtr_settingsinterface.h"

#include <QDir>
#include <QStandardPaths>

namespace DownloadFolder {

QString SettingKey(const QString& userName)
{
    return QStringLiteral("vtr.account.%1/downloadfolder").arg(userName);
}

QString UsualKey()
{
    return QStringLiteral("vtr.downloads/folder");
}

QString Of(VTSettingsInterface* settings, const QString& userName)
{
    const QString chosen = settings->Value(SettingKey(userName), {}).toString();
    if (QDir::isAbsolutePath(chosen))
        return QDir::cleanPath(chosen);
    const QString usual = settings->Value(UsualKey(), {}).toString();
    if (QDir::isAbsolutePath(usual))
        return QDir::cleanPath(usual);
    return QStandardPaths::writableLocation(QStandardPaths::DownloadLocation) + QLatin1String("/QuillStar");
}

} // namespace DownloadFolder
