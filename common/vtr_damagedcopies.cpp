#include "common/vtr_damagedcopies.h"

#include <QFile>
#include <QFileInfo>
#include <QSettings>

namespace {

QString CopyName(const QString& strPath, int nNumber)
{
    const QString strName = QString(strPath + QLatin1String(".damaged"));
    return nNumber == 1 ? strName : QStringLiteral("%1.%2").arg(strName).arg(nNumber);
}

QByteArray Content(const QString& strPath)
{
    QFile file(strPath);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

void VTDamagedCopies::Keep(const QString& strPath)
{
    const QFileInfo info(strPath);
    if (info.lastModified() == m_modified && info.size() == m_nSize)
        return;
    m_modified = info.lastModified();
    m_nSize = info.size();

    int nNumber = 1;
    while (QFile::exists(CopyName(strPath, nNumber)))
        ++nNumber;
    if (nNumber > 1 && Content(CopyName(strPath, nNumber - 1)) == Content(strPath))
        return;
    // QSettings reports an error only once for each path, so the copy is checked instead of the file.
    const QString strCopy = CopyName(strPath, nNumber);
    if (QFile::copy(strPath, strCopy)
        && QSettings(strCopy, QSettings::IniFormat).status() != QSettings::FormatError)
        QFile::remove(strCopy);
}
