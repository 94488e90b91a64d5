#pragma once

#include <QString>

/// The texts of a message box: a few short lines in a label, anything longer in the scrollable area below it. Either may be
/// empty; together they hold the whole message.
struct MessageText
{
    QString label;
    QString area;
};

/// @param text may be empty; then `detail` is the message.
/// @param list true when a detail text of several lines is a list or notice, false when it is the question itself.
MessageText ArrangeMessage(const QString& text, const QString& detail, bool list);

/// @return a tool tip that shows the text as it is, even if it looks like markup.
QString PlainToolTip(const QString& text);
