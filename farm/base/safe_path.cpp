#include "farm/base/safe_path.h"

#include <QStringList>

#include <algorithm>

namespace farm {

namespace {

constexpr int LongestPart = 255; // bytes
constexpr int MostParts = 64;

bool IsUnsafe(QChar character)
{
    return character == QLatin1Char('\\') || character.category() == QChar::Other_Control
        || character == QChar::ReplacementCharacter;
}

bool IsSafePart(const QString& part)
{
    return !part.isEmpty() && part != QLatin1String(".") && part != QLatin1String("..")
        && part.toUtf8().size() <= LongestPart;
}

} // namespace

bool IsSafePath(const QString& path)
{
    const bool hasDrive = path.size() >= 2 && path.at(1) == QLatin1Char(':') && path.at(0).isLetter();
    // Half of a surrogate pair cannot be encoded as UTF-8, so two such paths could name the same file.
    const QByteArray bytes = path.toUtf8();
    if (hasDrive || bytes.size() > LongestSafePath || QString::fromUtf8(bytes) != path
        || std::any_of(path.cbegin(), path.cend(), IsUnsafe))
        return false;
    const QStringList parts = path.split(QLatin1Char('/'));
    return parts.size() <= MostParts && std::all_of(parts.cbegin(), parts.cend(), IsSafePart);
}

} // namespace farm
