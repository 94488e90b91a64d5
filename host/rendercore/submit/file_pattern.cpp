#include "host/rendercore/submit/file_pattern.h"

#include <algorithm>

namespace {

constexpr int LongestName = 255;
constexpr int LongestToken = 16; // characters between the angle brackets
constexpr int FirstTile = 1001;
constexpr int LastTile = 1999;
constexpr int TileDigits = 4;

bool IsDigit(QChar character)
{
    return character >= QLatin1Char('0') && character <= QLatin1Char('9');
}

int EndOfDigits(const QString& text, int from)
{
    while (from < text.size() && IsDigit(text.at(from)))
        ++from;
    return from;
}

} // namespace

FilePattern::FilePattern(const QString& name, bool isSequence)
{
    if (name.size() > LongestName) {
        AddText(name);
        return;
    }
    const int suffix = name.lastIndexOf(QLatin1Char('.'));
    int frame = -1;
    for (int at = 0; at < name.size();) {
        const int length = ReadToken(name, at);
        if (length == 0 && IsDigit(name.at(at)))
            AddDigit(name.at(at));
        else if (length == 0)
            AddText(name.mid(at, 1));
        if (m_pieces.constLast().isNumber && (suffix < 0 || at < suffix))
            frame = m_pieces.size() - 1;
        at += std::max(1, length);
    }
    if (isSequence && frame >= 0 && !m_pieces.at(frame).isOpen) {
        m_pieces[frame].isOpen = true;
        m_pieces[frame].text.clear();
        m_pieces[frame].width = 1;
    }
    OpenTiles();
}

/// A name with the number of the first tile matches all tiles.
void FilePattern::OpenTiles()
{
    for (Piece& piece : m_pieces) {
        if (!piece.isNumber || piece.isOpen || piece.text != QString::number(FirstTile))
            continue;
        piece.text.clear();
        piece.isOpen = piece.isTile = true;
    }
}

/// @return the length of the token, which has been added; 0 when there is none.
int FilePattern::ReadToken(const QString& name, int from)
{
    int end = from;
    switch (name.at(from).unicode()) {
    case '<':
        end = name.indexOf(QLatin1Char('>'), from);
        if (end < 0 || end - from > LongestToken
            || !AddNamedToken(name.mid(from + 1, end - from - 1).toLower()))
            return 0;
        return end + 1 - from;
    case '#':
        while (end < name.size() && name.at(end) == QLatin1Char('#'))
            ++end;
        AddToken(end - from);
        return end - from;
    case '%':
        end = EndOfDigits(name, from + 1);
        if (end == name.size() || name.at(end) != QLatin1Char('d'))
            return 0;
        AddToken(name.midRef(from + 1, end - from - 1).toInt());
        return end + 1 - from;
    default:
        return 0;
    }
}

bool FilePattern::AddNamedToken(const QString& token)
{
    const bool isFrame = token.startsWith(QLatin1Char('f')) && EndOfDigits(token, 1) == token.size();
    if (token == QLatin1String("udim") || token == QLatin1String("tile")) {
        AddToken(TileDigits, true);
    } else if (token == QLatin1String("uvtile")) {
        AddText(QStringLiteral("u"));
        AddToken(1);
        AddText(QStringLiteral("_v"));
        AddToken(1);
    } else if (isFrame || token == QLatin1String("frame")) {
        AddToken(isFrame ? token.midRef(1).toInt() : 1);
    } else if (token == QLatin1String("u") || token == QLatin1String("v")) {
        AddToken(1);
    } else {
        return false;
    }
    return true;
}

/// A number and the tokens beside it are one piece, so that a run of digits is never ambiguous.
void FilePattern::AddToken(int width, bool isTile)
{
    if (m_pieces.isEmpty() || !m_pieces.constLast().isNumber)
        m_pieces.append(Piece());
    Piece& piece = m_pieces.last();
    piece.isTile = isTile && !piece.isOpen && piece.text.isEmpty();
    piece.isNumber = piece.isOpen = true;
    piece.tail.clear();
    piece.width += std::clamp(width, 1, LongestName);
}

void FilePattern::AddText(const QString& text)
{
    if (m_pieces.isEmpty() || m_pieces.constLast().isNumber)
        m_pieces.append(Piece());
    m_pieces.last().text += text;
}

void FilePattern::AddDigit(QChar digit)
{
    if (m_pieces.isEmpty() || !m_pieces.constLast().isNumber)
        m_pieces.append(Piece());
    Piece& piece = m_pieces.last();
    piece.isNumber = true;
    (piece.isOpen ? piece.tail : piece.text) += digit;
}

bool FilePattern::HasTokens() const
{
    return std::any_of(m_pieces.cbegin(), m_pieces.cend(), [](const Piece& piece) { return piece.isOpen; });
}

QString FilePattern::Prefix() const
{
    QString prefix;
    for (const Piece& piece : m_pieces) {
        if (piece.isOpen)
            break;
        prefix += piece.text;
    }
    return prefix;
}

bool FilePattern::Fits(const Piece& piece, const QStringRef& number)
{
    if (!piece.isOpen)
        return number == piece.text;
    if (piece.isTile && piece.tail.isEmpty())
        return number.size() == TileDigits && number.toInt() >= FirstTile && number.toInt() <= LastTile;
    return number.size() >= piece.text.size() + piece.width + piece.tail.size()
        && number.startsWith(piece.text) && number.endsWith(piece.tail);
}

bool FilePattern::Matches(const QString& name) const
{
    int at = 0;
    for (const Piece& piece : m_pieces) {
        if (!piece.isNumber) {
            if (name.midRef(at, piece.text.size()) != piece.text)
                return false;
            at += piece.text.size();
            continue;
        }
        const bool isNegative = piece.isOpen && at < name.size() && name.at(at) == QLatin1Char('-');
        const int from = at + (isNegative ? 1 : 0);
        at = EndOfDigits(name, from);
        if (!Fits(piece, name.midRef(from, at - from)))
            return false;
    }
    return at == name.size();
}
