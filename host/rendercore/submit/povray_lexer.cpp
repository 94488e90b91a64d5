#include "host/rendercore/submit/povray_lexer.h"

#include "host/rendercore/submit/scene_contents.h"

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

enum Class : char { Other, Letter, Digit, Blank, Numeric };

constexpr std::array<Class, 256> ClassTable()
{
    std::array<Class, 256> classes {};
    for (unsigned character = 0; character < classes.size(); ++character) {
        if ((character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z')
            || character == '_')
            classes[character] = Letter;
        else if (character >= '0' && character <= '9')
            classes[character] = Digit;
        else if (character == ' ' || (character >= '\t' && character <= '\r'))
            classes[character] = Blank;
    }
    for (const unsigned char character : {'.', ',', '<', '>', '+', '-'})
        classes[character] = Numeric;
    return classes;
}

constexpr std::array<Class, 256> Classes = ClassTable();

Class ClassOf(char character)
{
    return Classes[static_cast<unsigned char>(character)];
}

bool IsWordPart(char character)
{
    return ClassOf(character) == Letter || ClassOf(character) == Digit;
}

bool IsNumeric(char character)
{
    return ClassOf(character) == Digit || ClassOf(character) == Numeric;
}

} // namespace

PovRayLexer::PovRayLexer(Found found)
    : m_found(std::move(found))
{
}

void PovRayLexer::Feed(const QByteArray& block)
{
    const char* const end = block.constData() + block.size();
    for (const char* at = block.constData(); at < end;) {
        switch (m_state) {
        case State::Word:
            at = ReadWord(at, end);
            break;
        case State::Code:
            at = ReadCode(at, end);
            break;
        case State::Text:
            at = ReadText(at, end);
            break;
        case State::Escape:
            Keep(at, at + 1);
            ++at;
            m_state = State::Text;
            break;
        case State::LineComment:
        case State::BlockComment:
            ReadComment(*at++);
            break;
        }
    }
}

void PovRayLexer::Keep(const char* from, const char* to)
{
    const auto room = static_cast<std::ptrdiff_t>(LongestToken - m_token.size());
    m_token.append(from, static_cast<int>(std::min(to - from, room)));
}

const char* PovRayLexer::ReadWord(const char* from, const char* end)
{
    const char* const to = std::find_if_not(from, end, IsWordPart);
    Keep(from, to);
    if (to < end)
        EndWord();
    return to;
}

const char* PovRayLexer::ReadText(const char* from, const char* end)
{
    const char* const to
        = std::find_if(from, end, [](char character) { return character == '"' || character == '\\'; });
    Keep(from, to);
    if (to == end)
        return end;
    if (*to == '"')
        EndText();
    else
        m_state = State::Escape;
    return to + 1;
}

const char* PovRayLexer::ReadCode(const char* at, const char* end)
{
    const char character = *at;
    if (IsNumeric(character)) {
        // Most of a large scene is numbers, which never name files.
        m_last = m_lastButOne = QByteArrayLiteral(",");
        m_before = 0;
        return std::find_if_not(at, end, [](char part) { return IsNumeric(part) || ClassOf(part) == Blank; });
    }
    const char before = std::exchange(m_before, character);
    if (before == '/' && (character == '/' || character == '*')) {
        m_state = character == '/' ? State::LineComment : State::BlockComment;
        m_depth = 1;
        m_before = 0;
    } else if (ClassOf(character) == Letter) {
        m_token = QByteArray(before == '#' ? "#" : "");
        m_state = State::Word;
        return at;
    } else if (character == '"') {
        m_token.clear();
        m_state = State::Text;
    } else if (ClassOf(character) == Blank) {
        // "#  include" means "#include".
        if (before == '#')
            m_before = before;
    } else if (character != '#' && character != '/') {
        m_lastButOne = std::exchange(m_last, QByteArray(1, character));
    }
    return at + 1;
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
        m_found(Kind::Data, SceneText(m_openedFile));
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
            m_found(Kind::Include, SceneText(m_token));
        else if (isPicture)
            m_found(Kind::Data, SceneText(m_token));
        else if (m_lastButOne == "#fopen")
            m_openedFile = m_token;
    }
    m_lastButOne = std::exchange(m_last, QByteArrayLiteral("\""));
    m_before = 0;
    m_state = State::Code;
}
