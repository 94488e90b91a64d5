#include "common/vtr_writemark.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>

namespace {

/// A temporary file that is newer than its mark by more than this belongs to another write.
constexpr int LongestWrite = 60; // s

/// QSettings names its temporary files like the file, followed by a dot and six random letters.
const QLatin1String TemporaryPattern(".??????");

QString MarkOf(const QString& strPath)
{
    return QString(strPath + QLatin1String(".writing"));
}

QString LockOf(const QString& strPath)
{
    return QString(strPath + QLatin1String(".lock"));
}

} // namespace

VTWriteMark::VTWriteMark(const QString& strPath)
    : m_strMark(MarkOf(strPath))
{
    QFile(m_strMark).open(QIODevice::WriteOnly);
}

VTWriteMark::~VTWriteMark()
{
    QFile::remove(m_strMark);
}

void VTRemoveStrayFiles(const QString& strPath)
{
    const QFileInfo mark(MarkOf(strPath));
    if (!mark.exists())
        return;
    VTRemoveEmptyLock(strPath);
    QLockFile lock(LockOf(strPath));
    if (!lock.tryLock(0))
        return;
    const QFileInfo file(strPath);
    const QFileInfoList lstFile
        = file.dir().entryInfoList({QString(file.fileName() + TemporaryPattern)}, QDir::Files);
    for (const QFileInfo& stray : lstFile) {
        const qint64 nAge = mark.lastModified().secsTo(stray.lastModified());
        if (nAge >= 0 && nAge <= LongestWrite)
            QFile::remove(stray.filePath());
    }
    QFile::remove(mark.filePath());
}

void VTRemoveEmptyLock(const QString& strPath)
{
    const QFileInfo lock(LockOf(strPath));
    if (lock.exists() && lock.size() == 0)
        QLockFile(lock.filePath()).removeStaleLockFile();
}
