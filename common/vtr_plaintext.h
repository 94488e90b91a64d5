#pragma once

#include <QString>

class QLabel;

/// Text for a tool tip that shows exactly what was given: a text that Qt would take for markup comes back escaped,
/// any other unchanged.
QString VTPlainToolTip(const QString& strText);

/// Sets a label's text as plain text, and as its tool tip when asked for.
void VTSetPlainText(QLabel* pLabel, const QString& strText, bool bToolTip = false);
