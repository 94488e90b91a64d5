#pragma once

#include <QString>

#include <cstdint>
#include <optional>

namespace farm {

/// Seconds since the epoch.
std::int64_t Now();

/// `yyyy-MM-dd HH:mm:ss` in the farm's local time.
QString TimeText(std::int64_t time);

/// Reads what TimeText() writes; nothing when the text is no such time.
std::optional<std::int64_t> TimeFromText(const QString& text);

} // namespace farm
