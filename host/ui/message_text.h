#pragma once

#include <QString>

/// The texts of a message box, put where they fit: a few short lines into a label, anything longer into a scrollable
/// area under it. Either may be empty, and nothing is lost: what the one does not take stands in the other.
struct MessageText
{
    QString label;
    QString area;
};

/// @param text may be empty, then `detail` is the message itself.
/// @param list true when a detail text of several lines is a list or notice of its own, false when it is the question.
MessageText ArrangeMessage(const QString& text, const QString& detail, bool list);
