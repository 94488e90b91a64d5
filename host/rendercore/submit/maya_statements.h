#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>

#include <functional>

/// The words of a Maya statement; a quoted string is one word, without the quotation marks.
class MayaWords
{
public:
    int Count() const { return m_ends.size(); }
    bool Is(int index, const char* word) const;
    bool StartsWith(int index, char character) const;
    QString Text(int index) const;
    QString Last() const { return Text(Count() - 1); }

private:
    friend class MayaStatements;

    QByteArray At(int index) const;

    QByteArray m_bytes; // the bytes of all words
    QVector<int> m_ends;
};

/// Splits a Maya text into statements and these into words. The text may be fed in blocks of any size. Only the
/// beginning of a very long statement, which is geometry, is kept.
class MayaStatements
{
public:
    using Found = std::function<void(const MayaWords& words)>;

    explicit MayaStatements(Found found);

    void Feed(const QByteArray& block);

private:
    enum class State { Code, Text, Escape, Comment };

    const char* ReadCode(const char* from, const char* end);
    const char* ReadText(const char* from, const char* end);
    bool IsFull() const;
    void Keep(const char* from, const char* to);
    void AddWord();
    void EndWord();
    void EndStatement();

    Found m_found;
    State m_state = State::Code;
    MayaWords m_words;
    int m_limitFactor = 1;
    int m_wordStart = 0;        // index in the words' bytes
    bool m_hadSlash = false;    // the previous character was a slash
    bool m_isSlashKept = false; // and it has become part of a word
};
