#pragma once

#include <QApplication>
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
