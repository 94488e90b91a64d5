#pragma once

#include <QString>
#include <QStringList>

#include <cstdint>
#include <optional>

namespace farm {

/// The conditions of a job list; a job must meet all of them. An empty member imposes none.
/// Times are seconds since the epoch; both bounds are included.
struct JobConditions
{
    std::optional<std::int64_t> number;
    QString nameContains;
    QString type;
    std::optional<std::int64_t> status;
    QString pool;
    std::optional<std::int64_t> business;
    std::optional<QStringList> ids;
    std::optional<std::int64_t> submittedFrom;
    std::optional<std::int64_t> submittedTo;
    std::optional<std::int64_t> endedFrom;
    std::optional<std::int64_t> endedTo;
};

} // namespace farm
