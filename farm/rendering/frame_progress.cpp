#include "farm/rendering/frame_progress.h"

#include "farm/base/plain_file.h"

#include <algorithm>
#include <cmath>

namespace farm {

namespace {

int PercentOf(const QRegularExpressionMatch& report)
{
    double done = 0;
    double piece = 1; // as a part of the whole frame
    for (int group = 1; group < report.regularExpression().captureCount(); group += 2) {
        const double all = report.captured(group + 1).toDouble();
        if (all <= 0 || !std::isfinite(all))
            continue;
        done += piece * std::clamp(report.captured(group).toDouble(), 0.0, all) / all;
        piece /= all;
    }
    // Parts such as 29 of 100 are not exact in binary.
    constexpr double Rounding = 1e-6;
    return int(std::clamp(100 * done + Rounding, 0.0, 100.0));
}

} // namespace

std::optional<int> FrameProgress::Percent() const
{
    constexpr qint64 LongEnd = 4096; // bytes
    QFile file;
    if (pattern.pattern().isEmpty() || !OpenPlainFile(file, log))
        return std::nullopt;
    file.seek(std::max(qint64(0), file.size() - LongEnd));
    std::optional<int> percent;
    auto reports = pattern.globalMatch(QString::fromUtf8(file.read(LongEnd)));
    while (reports.hasNext())
        percent = PercentOf(reports.next());
    return percent;
}

} // namespace farm
