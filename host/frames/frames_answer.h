#pragma once

#include <QJsonObject>
#include <QString>

#include <map>
#include <optional>
#include <vector>

/// A frame of a job as the farm describes it.
struct Frame
{
    enum State { Waiting, Rendering, Finished, Failed };

    int number = 0;
    State state = Waiting;
    int attempts = 0;        ///< attempts that have ended
    qint64 milliseconds = 0; ///< rendering time of a finished frame, or so far of one in work
    qint64 cost = 0;         ///< in millionths of the currency unit
    QString file = {};       ///< name of the picture; empty while there is none
    qint64 size = 0;         ///< size of the picture in bytes
    int percent = -1;        ///< progress of a frame in work; -1 when the renderer does not report it
};

bool operator==(const Frame& one, const Frame& other);

/// The farm's answer to a request for a job's frames.
struct FramesAnswer
{
    int jobStatus = 0;
    QString jobCost;
    QString message;             ///< the reason why the job has failed
    std::optional<int> priority; ///< none where the farm does not tell it
    qint64 time = 0;             ///< the time to pass on when later changes are requested
    int total = 0;               ///< number of the job's frames
    std::vector<Frame> frames;   ///< the changed frames, sorted by number
    struct Work
    {
        qint64 milliseconds = 0; ///< since the frame was begun
        int percent = -1;        ///< as in Frame
    };
    std::map<int, Work> rendering; ///< the frames being rendered, by their numbers

    /// @return none when the answer is unusable; unreadable frames are left out.
    static std::optional<FramesAnswer> Read(const QJsonObject& body);
};

/// The account's charges by day.
struct SpendingAnswer
{
    struct Day
    {
        QString name;
        double amount = 0;
    };

    QString currency;
    std::vector<Day> days;

    static SpendingAnswer Read(const QJsonObject& body);
};
