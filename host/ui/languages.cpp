#include "host/ui/languages.h"

#include <QApplication>
#include <QDir>
#include <QLibraryInfo>
#include <QWidget>

namespace {

const QLatin1String Prefix("vtr_");

QString CodeOf(const QString& file)
{
    return QFileInfo(file).completeBaseName().mid(Prefix.size());
}

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

QLocale LocaleOf(const QString& file)
{
    return QLocale(CodeOf(file));
}

QString DisplayName(const QString& file)
{
    const QString code = CodeOf(file);
    // For plain "en" Qt answers "American English".
    if (code == QLatin1String("en"))
        return QLocale::languageToString(QLocale::English);
    const QString name = LocaleOf(file).nativeLanguageName();
    return name.isEmpty() ? code : name;
}

} // namespace Languages

bool Translations::Install(const QString& file)
{
    auto own = std::make_unique<QTranslator>();
    if (!own->load(file))
        return false;
    const QLocale locale = Languages::LocaleOf(file);
    QLocale::setDefault(locale);
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget* window : windows)
        window->setLocale(locale);

    m_ofQt = std::make_unique<QTranslator>();
    if (m_ofQt->load(locale, QStringLiteral("qtbase"), QStringLiteral("_"),
            QLibraryInfo::location(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(m_ofQt.get());
    m_own = std::move(own);
    QCoreApplication::installTranslator(m_own.get());
    return true;
}
