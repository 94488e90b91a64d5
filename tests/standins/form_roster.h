#pragma once

#include <QStringList>

class QWidget;

/// Object names of the main form's widgets.
QStringList MainFormNames();

/// A form with every widget that the client asks for, each at a place of its own.
/// @param leftOut object names that the form shall not have.
/// @return owned by the caller.
QWidget* NewForm(const QString& key, const QStringList& leftOut);
