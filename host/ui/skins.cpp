#include "host/ui/skins.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFontDatabase>
#include <QPalette>
#include <QResource>
#include <QSettings>
#include <QToolTip>

#include <algorithm>

// Q_INIT_RESOURCE does not work inside a namespace.
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
    QStringList families = settings.value(QStringLiteral("families")).toStringList();
    families.erase(std::remove_if(families.begin(), families.end(),
                       [&present](const QString& family) { return !present.contains(family); }),
        families.end());
    if (!families.isEmpty()) {
        font.setFamily(families.constFirst());
        font.setFamilies(families);
    }
    const int pixelSize = settings.value(QStringLiteral("pixelSize")).toInt();
    if (pixelSize > 0)
        font.setPixelSize(pixelSize);
    QApplication::setFont(font);
}

struct ColorKey
{
    const char* key;
    QPalette::ColorRole role;
    QPalette::ColorGroup group = QPalette::All;
};

constexpr ColorKey ApplicationColors[] = {
    {"window", QPalette::Window},
    {"base", QPalette::Base},
    {"alternateBase", QPalette::AlternateBase},
    {"button", QPalette::Button},
    {"text", QPalette::WindowText},
    {"text", QPalette::Text},
    {"text", QPalette::ButtonText},
    {"disabledText", QPalette::WindowText, QPalette::Disabled},
    {"disabledText", QPalette::Text, QPalette::Disabled},
    {"disabledText", QPalette::ButtonText, QPalette::Disabled},
    {"link", QPalette::Link},
    {"link", QPalette::LinkVisited},
    {"highlight", QPalette::Highlight},
    {"highlightedText", QPalette::HighlightedText},
    {"placeholder", QPalette::PlaceholderText},
};

constexpr ColorKey ToolTipColors[] = {
    {"toolTipBase", QPalette::ToolTipBase},
    {"toolTipText", QPalette::ToolTipText},
};

template <std::size_t Count>
QPalette Colored(QPalette palette, const ColorKey (&keys)[Count], const QSettings& settings)
{
    for (const ColorKey& key : keys) {
        const QColor color(settings.value(QLatin1String(key.key)).toString());
        if (color.isValid())
            palette.setColor(key.group, key.role, color);
    }
    return palette;
}

void ApplyColors(const QSettings& settings)
{
    QApplication::setPalette(Colored(QApplication::palette(), ApplicationColors, settings));
    QToolTip::setPalette(Colored(QToolTip::palette(), ToolTipColors, settings));
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
