#pragma once

#include <QByteArray>
#include <QStringList>

#include <functional>

/// Splits a Maya text into statements and these into words; a quoted string is one word, without the quotation marks.
/// The text may be fed in blocks of any size. Only the beginning of a very long statement is kept, which is geometry.
class MayaStatements
{
public:
    using Found = std::function<void(const QStringList& words)>;

    explicit MayaStatements(Found found);

    void Feed(const QByteArray& block);

private:
    enum class State { Code, Text, Escape, Comment };

    void ReadCode(char character);
    void EndWord();
    void EndStatement();
    void Keep(char character);

    Found m_found;
    State m_state = State::Code;
    QByteArray m_word;
    QStringList m_words;
    int m_kept = 0;    // bytes of the statement so far
    char m_before = 0; // the previous character, to find comments
};
