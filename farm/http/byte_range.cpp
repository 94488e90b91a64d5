#include "farm/http/byte_range.h"

#include <QRegularExpression>

#include <algorithm>

namespace farm {

std::optional<ByteRange> ParseRange(const QByteArray& header, std::int64_t size)
{
    // Eighteen digits always fit into 64 bits.
    static const QRegularExpression form(QStringLiteral("^bytes=(\\d{0,18})-(\\d{0,18})$"));
    const QRegularExpressionMatch match = form.match(QString::fromLatin1(header.trimmed()));
    const QString first = match.captured(1);
    const QString last = match.captured(2);
    if (!match.hasMatch() || (first.isEmpty() && last.isEmpty()))
        return std::nullopt;
    ByteRange range;
    // "-n" asks for the last n bytes.
    range.offset = first.isEmpty() ? std::max<std::int64_t>(0, size - last.toLongLong()) : first.toLongLong();
    const std::int64_t end
        = first.isEmpty() || last.isEmpty() ? size : std::min<std::int64_t>(size, last.toLongLong() + 1);
    range.length = end - range.offset;
    return range.length > 0 ? std::optional(range) : std::nullopt;
}

std::string ContentRange(const ByteRange& range, std::int64_t size)
{
    return "bytes " + std::to_string(range.offset) + '-' + std::to_string(range.offset + range.length - 1)
        + '/' + std::to_string(size);
}

bool NamesTag(const QByteArray& header, const QByteArray& tag)
{
    const QList<QByteArray> names = header.split(',');
    return std::any_of(names.cbegin(), names.cend(),
        [&tag](const QByteArray& name) { return name.trimmed() == tag || name.trimmed() == "*"; });
}

} // namespace farm
