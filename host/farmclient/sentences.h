#pragma once

#include <QStringList>

/// @return the text with a full stop, unless it has one already. Many texts of servers and of the system have none.
QString Sentence(const QString& text);

/// @return the texts as sentences, one after the other. Empty ones are left out.
QString Sentences(const QStringList& texts);
