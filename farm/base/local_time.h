#pragma once

#include <QString>

#include <cstdint>
#include <optional>

namespace farm {

/// The current time in seconds since the epoch.
std::int64_t Now();

/// `yyyy-MM-dd HH:mm:ss` in the farm's local time.
QString TimeText(std::int64_t time);

/// Reads a text in TimeText()'s format; nothing when it is not a valid time.
std::optional<std::int64_t> TimeFromText(const QString& text);

} // namespace farm
