#pragma once

#include <QByteArray>
#include <QString>

#include <functional>

/// Finds the files that a POV-Ray text names. It is fed block by block, however the blocks cut the text.
class PovRayLexer
{
public:
    enum class Kind { Include, Data };
    using Found = std::function<void(Kind kind, const QString& reference)>;

    explicit PovRayLexer(Found found);

    void Feed(const QByteArray& block);

private:
    enum class State { Code, Word, Text, Escape, LineComment, BlockComment };

    void TakeCode(char character);
    void TakeComment(char character);
    void EndWord();
    void EndText();

    Found m_found;
    State m_state = State::Code;
    int m_depth = 0;   // of nested block comments
    char m_before = 0; // the character before, where two make a sign
    QByteArray m_token;
    QByteArray m_last;       // the latest sign or word of the text
    QByteArray m_lastButOne; // the one before
    QByteArray m_openedFile; // what #fopen has named, until it is known whether it is read
};
