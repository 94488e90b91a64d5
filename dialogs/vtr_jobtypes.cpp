#include "dialogs/vtr_jobtypes.h"

#include <QSettings>

QList<VTJobType> VTReadJobTypes(const QString& strPath)
{
    QList<VTJobType> lstType;
    QSettings settings(strPath, QSettings::IniFormat);
    settings.beginGroup(QStringLiteral("vtr.rendering"));
    const QStringList lstKey = settings.allKeys();
    for (const QString& strKey : lstKey) {
        const QStringList lstEntry = settings.value(strKey).toStringList();
        for (const QString& strEntry : lstEntry) {
            const QStringList lstPart = strEntry.split(QLatin1Char('&'));
            if (lstPart.size() == 2)
                lstType.append(QStringList(strKey) + lstPart);
        }
    }
    return lstType;
}
