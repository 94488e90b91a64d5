#include "host/rendercore/download/download_paths.h"

#include "common/vtr_filename.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cstdio>

namespace {

constexpr int LongestBytes = 230; // file systems take 255; part files and copies have longer names
constexpr int LongestSuffix = 16; // characters, with the dot
constexpr int HashDigits = 8;

QString Suffix(const QString& name)
{
    const int dot = name.lastIndexOf(QLatin1Char('.'));
    return dot > 0 && name.size() - dot <= LongestSuffix ? name.mid(dot) : QString();
}

/// A hash keeps shortened names distinct.
QString Shortened(const QString& name)
{
    const QByteArray hash = QCryptographicHash::hash(name.toUtf8(), QCryptographicHash::Sha256).toHex();
    const QString end = QLatin1Char('~') + QString::fromLatin1(hash.left(HashDigits)) + Suffix(name);
    QString head = name.left(LongestBytes);
    while (head.toUtf8().size() + end.toUtf8().size() > LongestBytes)
        head.chop(head.size() > 1 && head.at(head.size() - 1).isLowSurrogate() ? 2 : 1);
    return head + end;
}

} // namespace

namespace DownloadPaths {

QString SafeComponent(const QString& name)
{
    QString safe = VTFileNamePart(name);
    if (safe.isEmpty())
        return QStringLiteral("_");
    if (safe.startsWith(QLatin1Char('.')))
        safe.replace(0, 1, QStringLiteral("%2E"));
    return safe.toUtf8().size() > LongestBytes ? Shortened(safe) : safe;
}

QString FileName(const QString& name, int copy)
{
    QString safe = SafeComponent(name);
    if (copy > 1)
        safe.insert(safe.size() - Suffix(safe).size(), QStringLiteral(" (%1)").arg(copy));
    return safe;
}

QString Destination(const QString& root, const QString& subDir, const QString& name, int copy)
{
    return QDir::cleanPath(root) + QLatin1Char('/') + SafeComponent(subDir) + QLatin1Char('/')
        + FileName(name, copy);
}

bool IsOccupied(const QString& path)
{
    const QFileInfo info(path);
    return info.exists() || info.isSymLink();
}

QString PartFile(const QString& destination)
{
    const QFileInfo info(destination);
    return info.path() + QLatin1String("/.") + info.fileName() + QLatin1String(".part");
}

void MovePart(const QString& from, const QString& to)
{
    const QString part = PartFile(from);
    if (!QFileInfo::exists(part))
        return;
    const QString target = PartFile(to);
    QDir().mkpath(QFileInfo(target).path());
    if (std::rename(QFile::encodeName(part).constData(), QFile::encodeName(target).constData()) != 0)
        QFile::remove(part);
}

bool LeadsOut(const QString& destination)
{
    const QFileInfo folder(QFileInfo(destination).path());
    const QDir root(QFileInfo(folder.path()).canonicalFilePath());
    return folder.canonicalFilePath() != root.filePath(folder.fileName());
}

QString Root(const QString& destination)
{
    return QFileInfo(QFileInfo(destination).path()).path();
}

} // namespace DownloadPaths
