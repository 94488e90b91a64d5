#include "host/rendercore/submit/maya_statements.h"

#include <utility>

namespace {

constexpr int LongestStatement = 16 * 1024; // bytes

} // namespace

MayaStatements::MayaStatements(Found found)
    : m_found(std::move(found))
{
}

void MayaStatements::Feed(const QByteArray& block)
{
    for (const char character : block) {
        switch (m_state) {
        case State::Code:
            ReadCode(character);
            break;
        case State::Text:
            if (character == '"') {
                m_words.append(QString::fromUtf8(m_word));
                m_word.clear();
                m_state = State::Code;
            } else if (character == '\\') {
                m_state = State::Escape;
            } else {
                Keep(character);
            }
            break;
        case State::Escape:
            Keep(character);
            m_state = State::Text;
            break;
        case State::Comment:
            if (character == '\n')
                m_state = State::Code;
            break;
        }
    }
}

void MayaStatements::ReadCode(char character)
{
    const char before = std::exchange(m_before, character);
    if (character == '"') {
        EndWord();
        m_state = State::Text;
    } else if (character == ';') {
        EndStatement();
    } else if (character == ' ' || (character >= '\t' && character <= '\r')) {
        EndWord();
    } else if (before == '/' && character == '/') {
        m_word.chop(1);
        EndWord();
        m_before = 0;
        m_state = State::Comment;
    } else {
        Keep(character);
    }
}

void MayaStatements::Keep(char character)
{
    if (++m_kept <= LongestStatement)
        m_word += character;
}

void MayaStatements::EndWord()
{
    if (!m_word.isEmpty())
        m_words.append(QString::fromUtf8(std::exchange(m_word, QByteArray())));
}

void MayaStatements::EndStatement()
{
    EndWord();
    if (!m_words.isEmpty())
        m_found(std::exchange(m_words, QStringList()));
    m_kept = 0;
}
