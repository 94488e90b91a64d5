#include "common/vtr_codetables.h"

#include <QObject>

namespace {

QMap<int, QString> TextsByCode(std::initializer_list<const char*> lstText)
{
    QMap<int, QString> mapText;
    for (const char* szText : lstText)
        mapText.insert(mapText.size(), QString::fromLatin1(szText));
    return mapText;
}

QString ProgressSheet(const QString& strColour)
{
    return QStringLiteral("QProgressBar{margin: 9px 31px 9px 0px;text-align: right;background: white;"
                          "border: 1px solid %1;border-radius: 5px;color: %1;} "
                          "QProgressBar::chunk{border-radius: 5px;background: %1;}")
        .arg(strColour);
}

} // namespace

void VTCodeTables::Load()
{
    mapJobStatus = TextsByCode({
        QT_TRANSLATE_NOOP("QObject", "Waiting"),
        QT_TRANSLATE_NOOP("QObject", "Running"),
        QT_TRANSLATE_NOOP("QObject", "Pause"),
        QT_TRANSLATE_NOOP("QObject", "Pending"),
        QT_TRANSLATE_NOOP("QObject", "Finished"),
        QT_TRANSLATE_NOOP("QObject", "Deleted"),
        QT_TRANSLATE_NOOP("QObject", "To full render"),
        QT_TRANSLATE_NOOP("QObject", "Failed"),
        QT_TRANSLATE_NOOP("QObject", "Arrears"),
        QT_TRANSLATE_NOOP("QObject", "Pause due to arrears"),
    });
    mapProgressStyle = {
        {0, ProgressSheet(QStringLiteral("rgb(255,99,79)"))},
        {1, ProgressSheet(QStringLiteral("rgb(255,161,94)"))},
        {2, ProgressSheet(QStringLiteral("rgb(125,180,75)"))},
    };
    mapTaskStage = TextsByCode({
        QT_TRANSLATE_NOOP("VTQsClientPrivate", "wait"),
        QT_TRANSLATE_NOOP("VTQsClientPrivate", "analyze"),
        QT_TRANSLATE_NOOP("VTQsClientPrivate", "compress"),
        QT_TRANSLATE_NOOP("VTQsClientPrivate", "checksum"),
        QT_TRANSLATE_NOOP("VTQsClientPrivate", "copysame"),
        QT_TRANSLATE_NOOP("VTQsClientPrivate", "upload"),
        QT_TRANSLATE_NOOP("VTQsClientPrivate", "uncompress"),
        QT_TRANSLATE_NOOP("VTQsClientPrivate", "submit"),
    });
    mapDownloadState = TextsByCode({
        QT_TRANSLATE_NOOP("VTQsClientPrivate", "Waiting"),
        QT_TRANSLATE_NOOP("VTQsClientPrivate", "Downloading"),
        QT_TRANSLATE_NOOP("VTQsClientPrivate", "Finished"),
        QT_TRANSLATE_NOOP("VTQsClientPrivate", "Failed"),
        QT_TRANSLATE_NOOP("VTQsClientPrivate", "Stopped"),
    });
}

QString VTCodeTables::JobStatusText(const QMap<int, QString>& mapStatus, int nStatus)
{
    const auto itText = mapStatus.constFind(nStatus);
    return itText == mapStatus.constEnd() ? QObject::tr("Unknown") : QObject::tr(qUtf8Printable(*itText));
}
