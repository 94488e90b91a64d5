#include "common/vtr_filename.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace {

bool StandsInFileName(QChar chr)
{
    return chr.unicode() >= 0x20 && chr.unicode() != 0x7f && !QStringLiteral("/\\:*?\"<>|").contains(chr);
}

} // namespace

QString VTFileNamePart(const QString& strName)
{
    const bool bOnlyDots
        = std::all_of(strName.begin(), strName.end(), [](QChar chr) { return chr == QLatin1Char('.'); });
    QString strSafe;
    for (const QChar chr : strName) {
        if (!bOnlyDots && StandsInFileName(chr))
            strSafe += chr;
        else
            strSafe += QStringLiteral("%%1").arg(uint(chr.unicode()), 2, 16, QLatin1Char('0')).toUpper();
    }
    return strSafe;
}

QString VTAccountFile(const QString& strFolder, const QString& strServer, const QString& strUserName)
{
    return QString(QCoreApplication::applicationDirPath() + QLatin1Char('/') + strFolder + QLatin1Char('/')
        + VTFileNamePart(strServer) + QLatin1Char('_') + VTFileNamePart(strUserName) + QLatin1String(".ini"));
}

bool VTEnsureFile(const QString& strPath)
{
    if (QFileInfo::exists(strPath))
        return true;
    QDir().mkpath(QFileInfo(strPath).path());
    QFile file(strPath);
    return file.open(QIODevice::ReadWrite) && file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
}
