#pragma once

#include <QIcon>
#include <QStringList>

/// Skins are resource folders that hold ":/<skin>/<form key>.qss", ":/<skin>/main.png" and other files.
namespace Skins {

/// Makes the built-in forms and skins available, and those in the resource files (*.rcc) of a folder.
void Install(const QString& folder);

/// @return the names of all skins, which are the resource folders with a style sheet for the main form.
QStringList Names();

/// @return the style sheet of a form or menu, empty when the skin has none.
QString StyleSheet(const QString& skin, const QString& key);

QIcon MainIcon(const QString& skin);

/// @return the path of the file with the skin's fonts, colours and layout of the main form.
QString SettingsFile(const QString& skin);

/// Sets the application's font and colours from a settings file. Entries that the file leaves out stay unchanged.
void ApplySettings(const QString& iniFile);

} // namespace Skins
