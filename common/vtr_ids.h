#pragma once

#include <QLatin1String>

/// Reverse-domain keys: services, forms and windows of the host family, and the style sheets named after them.
namespace VTIds {

/// The plugin itself, its main form, and the main form's style sheet and layout file.
inline const QLatin1String Client("com.vtr.qsclient");
inline const QLatin1String Search("com.vtr.search");
inline const QLatin1String SetArgument("com.vtr.setargument");
inline const QLatin1String SetParent("com.vtr.setparent");
inline const QLatin1String InputDialog("com.vtr.inputdialog");

/// Style sheet of the menus.
inline const QLatin1String Menu("com.vtr.menu");

/// The host's sign-in window.
inline const QLatin1String SignInWindow("com.vtr.authclient");

inline const QLatin1String Settings("com.vtr.settings");
inline const QLatin1String Logger("com.vtr.logger");
inline const QLatin1String UiLoader("com.vtr.uiloader");
inline const QLatin1String MessageBox("com.vtr.messagebox");
inline const QLatin1String Communication("com.vtr.communication");
inline const QLatin1String RenderCore("com.vtr.rendercore");
inline const QLatin1String Configuration("com.vtr.configuration");
inline const QLatin1String Previewer("com.vtr.previewer");

} // namespace VTIds
