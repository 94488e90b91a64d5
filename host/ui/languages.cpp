#include "languages.h"

#include <QDir>
#include <QLocale>

namespace {

const QLatin1String Prefix("vtr_");

} // namespace

namespace Languages {

QStringList Files(const QString& folder)
{
    QStringList files;
    const QFileInfoList found
        = QDir(folder).entryInfoList({Prefix + QLatin1String("*.qm")}, QDir::Files, QDir::Name);
    for (const QFileInfo& file : found)
        files.append(file.absoluteFilePath());
    return files;
}

QString DisplayName(const QString& file)
{
    const QString code = QFileInfo(file).completeBaseName().mid(Prefix.size());
    const QString name = QLocale(code).nativeLanguageName();
    return name.isEmpty() ? code : name;
}

} // namespace Languages
