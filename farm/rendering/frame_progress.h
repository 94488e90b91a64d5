#pragma once

#include <QRegularExpression>
#include <QString>

#include <optional>

namespace farm {

/// Reads the progress of a renderer from its output.
struct FrameProgress
{
    /// The file with everything that the renderer has written so far.
    QString log;
    /// Matches the reports of progress, see JobType::progress; empty when the renderer makes none.
    QRegularExpression pattern;

    /// The latest report at the end of the log in percent; none without a report.
    std::optional<int> Percent() const;
};

} // namespace farm
