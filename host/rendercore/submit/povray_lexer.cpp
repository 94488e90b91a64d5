#include "host/rendercore/submit/povray_lexer.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

constexpr int LongestToken = 4096; // bytes

constexpr std::array PictureTypes {
    "png", "jpeg", "tga", "tiff", "gif", "ppm", "pgm", "iff", "sys", "exr", "hdr", "pot", "df3", "ttf"};

// These blocks may name a picture without its type.
constexpr std::array PictureBlocks {"image_map", "bump_map", "material_map", "image_pattern", "height_field"};

template <typename Words>
bool IsOneOf(const QByteArray& word, const Words& words)
{
    return std::any_of(words.begin(), words.end(), [&word](const char* known) { return word == known; });
}

bool IsWordPart(char character)
{
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z')
        || (character >= '0' && character <= '9') || character == '_';
}

bool IsBlank(char character)
{
    return character == ' ' || (character >= '\t' && character <= '\r');
}

} // namespace

PovRayLexer::PovRayLexer(Found found)
    : m_found(std::move(found))
{
}

void PovRayLexer::Feed(const QByteArray& block)
{
    for (const char character : block) {
        switch (m_state) {
        case State::Word:
            if (IsWordPart(character)) {
                if (m_token.size() < LongestToken)
                    m_token += character;
                break;
            }
            EndWord();
            ReadCode(character);
            break;
        case State::Code:
            ReadCode(character);
            break;
        case State::Text:
            if (character == '"')
                EndText();
            else if (character == '\\')
                m_state = State::Escape;
            else if (m_token.size() < LongestToken)
                m_token += character;
            break;
        case State::Escape:
            m_token += character;
            m_state = State::Text;
            break;
        case State::LineComment:
        case State::BlockComment:
            ReadComment(character);
            break;
        }
    }
}

void PovRayLexer::ReadCode(char character)
{
    const char before = std::exchange(m_before, character);
    if (before == '/' && (character == '/' || character == '*')) {
        m_state = character == '/' ? State::LineComment : State::BlockComment;
        m_depth = 1;
        m_before = 0;
    } else if (IsWordPart(character)) {
        m_token = QByteArray(before == '#' ? "#" : "") + character;
        m_state = State::Word;
    } else if (character == '"') {
        m_token.clear();
        m_state = State::Text;
    } else if (IsBlank(character)) {
        // "#  include" means "#include".
        if (before == '#')
            m_before = before;
    } else if (character != '#' && character != '/') {
        m_lastButOne = std::exchange(m_last, QByteArray(1, character));
    }
}

void PovRayLexer::ReadComment(char character)
{
    const char before = std::exchange(m_before, character);
    if (m_state == State::LineComment) {
        if (character == '\n' || character == '\r')
            m_state = State::Code;
        return;
    }
    if (before == '/' && character == '*')
        ++m_depth;
    else if (before == '*' && character == '/')
        --m_depth;
    else
        return;
    m_before = 0;
    if (m_depth == 0)
        m_state = State::Code;
}

void PovRayLexer::EndWord()
{
    if (m_token == "read" && !m_openedFile.isEmpty())
        m_found(Kind::Data, QString::fromUtf8(m_openedFile));
    m_openedFile.clear();
    m_lastButOne = std::exchange(m_last, std::exchange(m_token, QByteArray()));
    m_before = 0;
    m_state = State::Code;
}

void PovRayLexer::EndText()
{
    if (!m_token.isEmpty() && m_token.size() < LongestToken) {
        const bool isPicture
            = IsOneOf(m_last, PictureTypes) || (m_last == "{" && IsOneOf(m_lastButOne, PictureBlocks));
        if (m_last == "#include")
            m_found(Kind::Include, QString::fromUtf8(m_token));
        else if (isPicture)
            m_found(Kind::Data, QString::fromUtf8(m_token));
        else if (m_lastButOne == "#fopen")
            m_openedFile = m_token;
    }
    m_lastButOne = std::exchange(m_last, QByteArrayLiteral("\""));
    m_before = 0;
    m_state = State::Code;
}
