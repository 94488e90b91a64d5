#include "host/frames/frame_list.h"

#include <algorithm>

FrameList::Change FrameList::Apply(const FramesAnswer& answer)
{
    Change change;
    std::vector<Frame> added;
    for (const Frame& frame : answer.frames) {
        if (RowOf(frame.number) >= 0)
            Replace(frame, change);
        else
            added.push_back(frame);
    }
    change.hasNewRows = !added.empty();
    const auto middle = std::ptrdiff_t(m_frames.size());
    m_frames.insert(m_frames.end(), added.begin(), added.end());
    std::inplace_merge(m_frames.begin(), m_frames.begin() + middle, m_frames.end(),
        [](const Frame& one, const Frame& other) { return one.number < other.number; });
    MarkRendering(answer.rendering, change);
    m_total = answer.total;
    m_time = answer.time;
    std::sort(change.rows.begin(), change.rows.end());
    change.rows.erase(std::unique(change.rows.begin(), change.rows.end()), change.rows.end());
    return change;
}

void FrameList::Replace(const Frame& frame, Change& change)
{
    const int row = RowOf(frame.number);
    Frame& known = m_frames[std::size_t(row)];
    if (known == frame)
        return;
    known = frame;
    change.rows.push_back(row);
}

/// For the farm, beginning or cancelling a frame does not change it, so each answer names all frames being rendered.
void FrameList::MarkRendering(const std::map<int, FramesAnswer::Work>& rendering, Change& change)
{
    const auto mark = [&](int number, Frame::State from, Frame::State to, const FramesAnswer::Work& work) {
        const int row = RowOf(number);
        if (row < 0 || m_frames[std::size_t(row)].state != from)
            return;
        Frame& frame = m_frames[std::size_t(row)];
        frame.state = to;
        frame.milliseconds = work.milliseconds;
        frame.percent = work.percent;
        change.rows.push_back(row);
    };
    for (const auto& frame : m_rendering)
        mark(frame.first, Frame::Rendering, Frame::Waiting, {});
    for (const auto& [number, work] : rendering)
        mark(number, Frame::Waiting, Frame::Rendering, work);
    m_rendering = rendering;
}

void FrameList::Clear()
{
    *this = {};
}

int FrameList::RowOf(int number) const
{
    const auto found = std::lower_bound(m_frames.begin(), m_frames.end(), number,
        [](const Frame& frame, int wanted) { return frame.number < wanted; });
    return found != m_frames.end() && found->number == number ? int(found - m_frames.begin()) : -1;
}

int FrameList::Count(Frame::State state) const
{
    return int(std::count_if(
        m_frames.begin(), m_frames.end(), [state](const Frame& frame) { return frame.state == state; }));
}

qint64 FrameList::MeanMilliseconds() const
{
    qint64 sum = 0;
    for (const Frame& frame : m_frames)
        sum += frame.state == Frame::Finished ? frame.milliseconds : 0;
    const int count = Count(Frame::Finished);
    return count > 0 ? sum / count : 0;
}

QStringList FrameList::Pictures() const
{
    QStringList names;
    for (const Frame& frame : m_frames) {
        if (!frame.file.isEmpty())
            names.append(frame.file);
    }
    return names;
}
