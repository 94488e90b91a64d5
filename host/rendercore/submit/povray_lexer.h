#pragma once

#include <QByteArray>
#include <QString>

#include <functional>

/// Finds the files that a POV-Ray text names. The text may be fed in blocks of any size.
class PovRayLexer
{
public:
    enum class Kind { Include, Data };
    using Found = std::function<void(Kind kind, const QString& reference)>;

    explicit PovRayLexer(Found found);

    void Feed(const QByteArray& block);

private:
    enum class State { Code, Word, Text, Escape, LineComment, BlockComment };

    const char* ReadCode(const char* at, const char* end);
    const char* ReadWord(const char* from, const char* end);
    const char* ReadText(const char* from, const char* end);
    void ReadComment(char character);
    void Keep(const char* from, const char* to);
    void EndWord();
    void EndText();

    Found m_found;
    State m_state = State::Code;
    int m_depth = 0;   // how many block comments are nested
    char m_before = 0; // the previous character, for symbols of two characters
    QByteArray m_token;
    QByteArray m_last;       // the latest symbol or word
    QByteArray m_lastButOne; // the symbol or word before it
    QByteArray m_openedFile; // the file of an #fopen, until the next word shows whether it is read
};
