#pragma once

#include <QStringList>

/// @return the text with a full stop, unless it ends a sentence already. Many texts of servers and of the system do not.
QString Sentence(const QString& text);

/// @return the texts as sentences, one after the other. Empty ones are left out.
QString Sentences(const QStringList& texts);
