#pragma once

#include "host/frames/chart_view.h"

class FrameModel;
struct SpendingAnswer;

/// The charts that the frames window can show.
namespace FrameCharts {

/// The rendering times of the finished frames.
/// @param model must outlive the chart.
ChartView::Data Times(const FrameModel& model);

/// The account's charges by day.
ChartView::Data Spending(const SpendingAnswer& spending);

} // namespace FrameCharts
