#pragma once

#include <QRegularExpression>
#include <QString>

#include <optional>

namespace farm {

/// Reads from a renderer's output how far it is.
struct FrameProgress
{
    /// The file of all that it has written so far.
    QString log;
    /// Finds a report of its progress, see JobType::progress; empty when it makes none.
    QRegularExpression pattern;

    /// The latest report at the end of the log in percent; none without a report.
    std::optional<int> Percent() const;
};

} // namespace farm
