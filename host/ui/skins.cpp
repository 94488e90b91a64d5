#include "skins.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFontDatabase>
#include <QPalette>
#include <QResource>
#include <QSettings>
#include <QToolTip>

#include <algorithm>

// Q_INIT_RESOURCE must stand outside of every namespace.
static void InitBuiltInResources()
{
    Q_INIT_RESOURCE(host_ui);
}

namespace {

const QLatin1String MainFormKey("com.vtr.qsclient");

QString FileOf(const QString& skin, const QString& name)
{
    return QString(QLatin1String(":/") + skin + QLatin1Char('/') + name);
}

void ApplyFont(const QSettings& settings)
{
    QFont font = QApplication::font();
    const QStringList present = QFontDatabase().families();
    const QStringList wanted = settings.value(QStringLiteral("families")).toStringList();
    for (const QString& family : wanted) {
        if (present.contains(family)) {
            font.setFamily(family);
            break;
        }
    }
    const int pixelSize = settings.value(QStringLiteral("pixelSize")).toInt();
    if (pixelSize > 0)
        font.setPixelSize(pixelSize);
    QApplication::setFont(font);
}

void SetColor(QPalette& palette, QPalette::ColorRole role, const QSettings& settings, const QString& key)
{
    const QColor color(settings.value(key).toString());
    if (color.isValid())
        palette.setColor(role, color);
}

void ApplyColors(const QSettings& settings)
{
    QPalette palette = QApplication::palette();
    SetColor(palette, QPalette::Highlight, settings, QStringLiteral("highlight"));
    SetColor(palette, QPalette::HighlightedText, settings, QStringLiteral("highlightedText"));
    SetColor(palette, QPalette::PlaceholderText, settings, QStringLiteral("placeholder"));
    QApplication::setPalette(palette);

    QPalette toolTips = QToolTip::palette();
    SetColor(toolTips, QPalette::ToolTipBase, settings, QStringLiteral("toolTipBase"));
    SetColor(toolTips, QPalette::ToolTipText, settings, QStringLiteral("toolTipText"));
    QToolTip::setPalette(toolTips);
}

} // namespace

namespace Skins {

void Install(const QString& folder)
{
    InitBuiltInResources();
    const QFileInfoList files
        = QDir(folder).entryInfoList({QStringLiteral("*.rcc")}, QDir::Files, QDir::Name);
    for (const QFileInfo& file : files) {
        if (!QResource::registerResource(file.absoluteFilePath()))
            qWarning("%s is not a resource file", qUtf8Printable(file.absoluteFilePath()));
    }
}

QStringList Names()
{
    QStringList names = QDir(QStringLiteral(":/")).entryList(QDir::Dirs, QDir::Name);
    const auto isNoSkin = [](const QString& name) {
        return !QFile::exists(FileOf(name, MainFormKey + QLatin1String(".qss")));
    };
    names.erase(std::remove_if(names.begin(), names.end(), isNoSkin), names.end());
    return names;
}

QString StyleSheet(const QString& skin, const QString& key)
{
    QFile file(FileOf(skin, key + QLatin1String(".qss")));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QIcon MainIcon(const QString& skin)
{
    return QIcon(FileOf(skin, QStringLiteral("main.png")));
}

QString SettingsFile(const QString& skin)
{
    return FileOf(skin, MainFormKey + QLatin1String(".ini"));
}

void ApplySettings(const QString& iniFile)
{
    QSettings settings(iniFile, QSettings::IniFormat);
    settings.beginGroup(QStringLiteral("skin"));
    ApplyFont(settings);
    ApplyColors(settings);
}

} // namespace Skins
