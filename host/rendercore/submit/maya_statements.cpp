#include "host/rendercore/submit/maya_statements.h"

#include "host/rendercore/submit/scene_contents.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace {

constexpr int LongestStatement = 16 * 1024; // bytes
constexpr int MostWords = 256;

// Edits of references are kept whole, within reason: they may name files.
constexpr const char* Edits = "dataReferenceEdits";
constexpr int EditsWord = 3;
constexpr int EditsFactor = 256;

enum class Meaning : char { Plain, Blank, Special };

constexpr std::array<Meaning, 256> MeaningTable()
{
    std::array<Meaning, 256> meanings {};
    for (const unsigned char character : {' ', '\t', '\n', '\v', '\f', '\r'})
        meanings[character] = Meaning::Blank;
    for (const unsigned char character : {'"', ';', '/'})
        meanings[character] = Meaning::Special;
    return meanings;
}

constexpr std::array<Meaning, 256> Meanings = MeaningTable();

Meaning MeaningOf(char character)
{
    return Meanings[static_cast<unsigned char>(character)];
}

const char* Find(const char* from, const char* end, char character)
{
    const auto* found = static_cast<const char*>(
        std::memchr(from, static_cast<unsigned char>(character), static_cast<std::size_t>(end - from)));
    return found ? found : end;
}

/// Most of a large scene is geometry; this is the fastest way past it.
const char* FirstSpecial(const char* from, const char* end)
{
    for (const char character : {';', '"', '/'})
        end = Find(from, end, character);
    return end;
}

} // namespace

QByteArray MayaWords::At(int index) const
{
    const int from = index == 0 ? 0 : m_ends.at(index - 1);
    return QByteArray::fromRawData(m_bytes.constData() + from, m_ends.at(index) - from);
}

bool MayaWords::Is(int index, const char* word) const
{
    return index < Count() && At(index) == word;
}

bool MayaWords::StartsWith(int index, char character) const
{
    return index < Count() && At(index).startsWith(character);
}

QString MayaWords::Text(int index) const
{
    return index < Count() ? SceneText(At(index)) : QString();
}

MayaStatements::MayaStatements(Found found)
    : m_found(std::move(found))
{
}

void MayaStatements::Feed(const QByteArray& block)
{
    const char* const end = block.constData() + block.size();
    for (const char* at = block.constData(); at < end;) {
        switch (m_state) {
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
        case State::Comment:
            at = Find(at, end, '\n');
            m_state = at == end ? State::Comment : State::Code;
            break;
        }
    }
}

bool MayaStatements::IsFull() const
{
    return m_words.Count() >= m_limitFactor * MostWords
        || m_words.m_bytes.size() >= m_limitFactor * LongestStatement;
}

void MayaStatements::AddWord()
{
    m_words.m_ends.append(m_words.m_bytes.size());
    m_wordStart = m_words.m_bytes.size();
    if (m_words.Count() == EditsWord + 1 && m_words.Is(EditsWord, Edits))
        m_limitFactor = EditsFactor;
}

/// Reads up to the next significant character.
const char* MayaStatements::ReadCode(const char* from, const char* end)
{
    const bool isFull = IsFull();
    const char* to = isFull
        ? FirstSpecial(from, end)
        : std::find_if(from, end, [](char character) { return MeaningOf(character) != Meaning::Plain; });
    if (to > from) {
        Keep(from, to);
        m_hadSlash = false;
    }
    if (to == end)
        return end;
    const bool isComment = *to == '/' && m_hadSlash;
    if (isComment && m_isSlashKept)
        m_words.m_bytes.chop(1);
    m_hadSlash = *to == '/' && !isComment;
    if (m_hadSlash) {
        m_isSlashKept = !isFull;
        Keep(to, to + 1);
        return to + 1;
    }
    EndWord();
    if (isComment)
        m_state = State::Comment;
    else if (*to == '"')
        m_state = State::Text;
    else if (*to == ';')
        EndStatement();
    return to + 1;
}

const char* MayaStatements::ReadText(const char* from, const char* end)
{
    const char* to
        = std::find_if(from, end, [](char character) { return character == '"' || character == '\\'; });
    Keep(from, to);
    if (to == end)
        return end;
    if (*to == '\\') {
        m_state = State::Escape;
        return to + 1;
    }
    m_state = State::Code;
    // An empty text is a word as well.
    if (!IsFull())
        AddWord();
    return to + 1;
}

void MayaStatements::Keep(const char* from, const char* to)
{
    if (!IsFull())
        m_words.m_bytes.append(from, static_cast<int>(std::min<std::ptrdiff_t>(to - from, LongestStatement)));
}

void MayaStatements::EndWord()
{
    if (m_words.m_bytes.size() > m_wordStart)
        AddWord();
}

void MayaStatements::EndStatement()
{
    if (m_words.Count() > 0)
        m_found(m_words);
    m_words.m_bytes.resize(0);
    m_words.m_ends.resize(0);
    m_wordStart = 0;
    m_limitFactor = 1;
}
