#pragma once

#include <QString>

class QWidget;

/// A name and a password as typed into a login prompt.
struct TypedLogin
{
    bool isGiven = false; ///< false when the user cancelled
    QString name = {};
    QString password = {};
};

/// Asks for a name and a password in a small modal dialog.
/// @param text tells the user what asks for them; shown as plain text.
TypedLogin AskForLogin(QWidget* parent, const QString& title, const QString& text);
