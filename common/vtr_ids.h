#pragma once

#include <QLatin1String>

/// Reverse-domain keys: services, forms and windows of the host family, and the style sheets named after them.
namespace VTIds {

/// The plugin itself, its main form, and the main form's style sheet and layout file.
inline constexpr QLatin1String Client("com.vtr.qsclient");
inline constexpr QLatin1String Search("com.vtr.search");
inline constexpr QLatin1String SetArgument("com.vtr.setargument");
inline constexpr QLatin1String SetParent("com.vtr.setparent");
inline constexpr QLatin1String InputDialog("com.vtr.inputdialog");

/// Style sheet of the menus.
inline constexpr QLatin1String Menu("com.vtr.menu");

/// The host's sign-in window.
inline constexpr QLatin1String SignInWindow("com.vtr.authclient");

inline constexpr QLatin1String Settings("com.vtr.settings");
inline constexpr QLatin1String Logger("com.vtr.logger");
inline constexpr QLatin1String UiLoader("com.vtr.uiloader");
inline constexpr QLatin1String MessageBox("com.vtr.messagebox");
inline constexpr QLatin1String Communication("com.vtr.communication");
inline constexpr QLatin1String RenderCore("com.vtr.rendercore");
inline constexpr QLatin1String Configuration("com.vtr.configuration");
inline constexpr QLatin1String Previewer("com.vtr.previewer");

} // namespace VTIds
