#pragma once

#include <QApplication>
#include <QLabel>
#include <QPlainTextEdit>
#include <QWidget>

/// The widget of this name in whichever window of the client holds it; null while there is none.
template <typename Widget>
Widget* Find(const char* name)
{
    const auto windows = QApplication::topLevelWidgets();
    for (const QWidget* window : windows) {
        if (auto* found = window->findChild<Widget*>(QLatin1String(name)))
            return found;
    }
    return nullptr;
}

/// What a message box says, wherever it says it.
inline QString SaidBy(const QWidget* box)
{
    return box->findChild<QLabel*>(QStringLiteral("lblText"))->text()
        + box->findChild<QPlainTextEdit*>(QStringLiteral("txtDetail"))->toPlainText();
}
