#pragma once

#include <QString>

class QLabel;

/// Makes a text safe as a tool tip: a text that Qt would take for markup is escaped, any other is returned unchanged.
QString VTPlainToolTip(const QString& strText);

/// Sets a label's text as plain text; with bToolTip also as its tool tip.
void VTSetPlainText(QLabel* pLabel, const QString& strText, bool bToolTip = false);
