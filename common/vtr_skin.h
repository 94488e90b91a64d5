#pragma once

#include <QIcon>
#include <QString>

class QEvent;
class QWidget;

/// A skin is a resource folder: ":/<skin>/<key>.qss", ":/<skin>/<key>.ini", ":/<skin>/main.png" and others.
namespace VTSkin {

QString StyleSheetFile(const QString& strSkin, const QString& strKey);
QString LayoutFile(const QString& strSkin, const QString& strKey);
QString WarningIconFile(const QString& strSkin);
/// The two icons of a page of the group panel.
QString ClosedPageIconFile(const QString& strSkin);
QString OpenPageIconFile(const QString& strSkin);
QIcon MainIcon(const QString& strSkin);

/// Gives a widget the style sheet of a skin; a missing file counts as an empty sheet. The sheet is set only when it
/// differs from the widget's current one, since parsing is expensive.
void ApplyStyleSheet(QWidget* pWidget, const QString& strSkin, const QString& strKey);

/// Fills the form's background and gives it the skin's style sheet.
void ApplyToForm(QWidget* pForm, const QString& strSkin, const QString& strKey);

/// @return whether a widget may look different after this event, so that cached pictures of it are outdated.
bool ChangesLook(const QEvent& event);

} // namespace VTSkin
