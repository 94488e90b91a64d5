#pragma once

#include <QByteArray>
#include <QStringList>

#include <functional>

/// Cuts a Maya text into statements and those into words; texts in quotation marks are one word each, without the marks.
/// It is fed block by block, however the blocks cut the text. Of a very long statement only the beginning is kept:
/// geometry is of no interest.
class MayaStatements
{
public:
    using Found = std::function<void(const QStringList& words)>;

    explicit MayaStatements(Found found);

    void Feed(const QByteArray& block);

private:
    enum class State { Code, Text, Escape, Comment };

    void TakeCode(char character);
    void EndWord();
    void EndStatement();
    void Keep(char character);

    Found m_found;
    State m_state = State::Code;
    QByteArray m_word;
    QStringList m_words;
    int m_kept = 0; // bytes of the statement
    char m_before = 0;
};
