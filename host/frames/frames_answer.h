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
    int attempts = 0;        ///< that have ended
    qint64 milliseconds = 0; ///< that a finished frame took, or since a frame is being rendered
    qint64 cost = 0;         ///< in millionths of the currency unit
    QString file = {};       ///< name of the picture; empty while there is none
    qint64 size = 0;         ///< of the picture, in bytes
};

bool operator==(const Frame& one, const Frame& other);

/// The farm's answer to a request for a job's frames.
struct FramesAnswer
{
    int jobStatus = 0;
    QString jobCost;
    QString message;           ///< why the job has failed
    qint64 time = 0;           ///< to ask with for later changes
    int total = 0;             ///< of the job's frames
    std::vector<Frame> frames; ///< that have changed, in the order of their numbers
    std::map<int, qint64>
        rendering; ///< the numbers of those being rendered, and the milliseconds since they began

    /// @return none when the answer cannot be used; frames that cannot be read are left out.
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
