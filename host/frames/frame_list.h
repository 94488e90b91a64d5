#pragma once

#include "host/frames/frames_answer.h"

#include <QStringList>

/// The frames of a job in the order of their numbers, kept up to date by the farm's answers.
class FrameList
{
public:
    struct Change
    {
        bool hasNewRows = false;
        std::vector<int> rows; ///< rows whose frames have changed, ascending
    };

    Change Apply(const FramesAnswer& answer);
    void Clear();

    const std::vector<Frame>& Frames() const { return m_frames; }

    /// @return the row of the frame; -1 for an unknown number.
    int RowOf(int number) const;

    /// @return the time since which changes have to be requested; 0 when all frames are needed.
    qint64 Since() const { return int(m_frames.size()) < m_total ? 0 : m_time; }

    int Count(Frame::State state) const;
    /// @return the mean time of a finished frame; 0 while there is none.
    qint64 MeanMilliseconds() const;
    /// @return the names of the finished pictures.
    QStringList Pictures() const;

private:
    void Replace(const Frame& frame, Change& change);
    void MarkRendering(const std::map<int, FramesAnswer::Work>& rendering, Change& change);

    std::vector<Frame> m_frames;
    std::map<int, FramesAnswer::Work> m_rendering;
    int m_total = 0;
    qint64 m_time = 0;
};
