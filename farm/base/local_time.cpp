#include "farm/base/local_time.h"

#include <QDateTime>

namespace farm {

namespace {

QString Format()
{
    return QStringLiteral("yyyy-MM-dd HH:mm:ss");
}

} // namespace

std::int64_t Now()
{
    return QDateTime::currentSecsSinceEpoch();
}

QString TimeText(std::int64_t time)
{
    return QDateTime::fromSecsSinceEpoch(time).toString(Format());
}

std::optional<std::int64_t> TimeFromText(const QString& text)
{
    const QDateTime time = QDateTime::fromString(text.trimmed(), Format());
    if (!time.isValid())
        return std::nullopt;
    return time.toSecsSinceEpoch();
}

} // namespace farm
