#pragma once

#include <QIcon>
#include <QStringList>

/// Skins are resource folders: ":/<skin>/<form key>.qss", ":/<skin>/main.png" and others.
namespace Skins {

/// Makes the built-in forms and skins available, and those of the resource files (*.rcc) in a folder.
void Install(const QString& folder);

/// Names of the skins: the resource folders that hold a style sheet for the main form.
QStringList Names();

/// @return the style sheet of a form or menu, empty when the skin has none.
QString StyleSheet(const QString& skin, const QString& key);

QIcon MainIcon(const QString& skin);

/// Path of the file with the skin's application-wide look and the layout of the main form.
QString SettingsFile(const QString& skin);

/// Gives the application the font and the colours of a settings file; what the file leaves out stays as it is.
void ApplySettings(const QString& iniFile);

} // namespace Skins
