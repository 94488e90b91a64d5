#pragma once

#include <QString>
#include <QStringList>

#include <cstdint>
#include <optional>

namespace farm {

/// Which jobs a list holds; a part without a value asks for nothing.
/// Times are seconds since the epoch, inclusive.
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

/// Reads the conditions of a job-list request: a JSON object as text, or nothing.
/// Throws BadInput when the text is no object or a value cannot be read.
JobConditions ParseJobConditions(const QByteArray& text);

} // namespace farm
