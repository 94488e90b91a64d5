#include "host/frames/frame_charts.h"

#include "host/frames/frame_model.h"

#include <QCoreApplication>

#include <algorithm>

namespace FrameCharts {

namespace {

constexpr double Second = 1000; // ms

QString Translated(const char* text)
{
    return QCoreApplication::translate("FrameCharts", text);
}

} // namespace

ChartView::Data Times(const FrameModel& model)
{
    ChartView::Data data;
    qint64 longest = 0;
    for (const Frame& frame : model.List().Frames()) {
        const qint64 time = frame.state == Frame::Finished ? frame.milliseconds : 0;
        longest = std::max(longest, time);
        data.values.push_back(double(time) / Second);
    }
    const auto timeText = [](double seconds) { return FrameModel::TimeText(qRound64(seconds * Second)); };
    const auto number = [&model](int index) { return QString::number(model.At(index).number); };
    data.nothing = Translated(QT_TRANSLATE_NOOP("FrameCharts", "No frame is finished yet."));
    data.scale = timeText;
    data.label = number;
    data.toolTip = [timeText, number](const ChartBar& bar) {
        return bar.count == 1
            ? Translated(QT_TRANSLATE_NOOP("FrameCharts", "Frame %1: %2"))
                  .arg(number(bar.first), timeText(bar.value))
            : Translated(QT_TRANSLATE_NOOP("FrameCharts", "Frames %1 to %2: at most %3"))
                  .arg(number(bar.first), number(bar.first + bar.count - 1), timeText(bar.value));
    };
    data.name = Translated(QT_TRANSLATE_NOOP("FrameCharts", "Chart of the frame times"));
    data.description
        = Translated(
            QT_TRANSLATE_NOOP("FrameCharts", "%1 finished frames took %2 each on average, and at most %3."))
              .arg(model.List().Count(Frame::Finished))
              .arg(FrameModel::TimeText(model.List().MeanMilliseconds()), FrameModel::TimeText(longest));
    return data;
}

ChartView::Data Spending(const SpendingAnswer& spending)
{
    ChartView::Data data;
    double sum = 0;
    for (const SpendingAnswer::Day& day : spending.days) {
        data.values.push_back(day.amount);
        sum += day.amount;
    }
    const auto amount = [currency = spending.currency](double value) {
        return QStringLiteral("%1 %2").arg(value, 0, 'f', 2).arg(currency);
    };
    const auto day = [days = spending.days](int index) { return days[std::size_t(index)].name; };
    data.nothing = Translated(QT_TRANSLATE_NOOP("FrameCharts", "Nothing was charged in this period."));
    data.scale = amount;
    data.label = day;
    data.toolTip = [amount, day](const ChartBar& bar) {
        return QStringLiteral("%1: %2").arg(day(bar.first), amount(bar.value));
    };
    data.name = Translated(QT_TRANSLATE_NOOP("FrameCharts", "Chart of the account's spending by day"));
    data.description = Translated(QT_TRANSLATE_NOOP("FrameCharts", "%1 in the last %2 days."))
                           .arg(amount(sum))
                           .arg(spending.days.size());
    return data;
}

} // namespace FrameCharts
