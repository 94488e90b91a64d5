#pragma once

#include <QJsonObject>
#include <QString>

#include <optional>
#include <vector>

/// The space that the account takes on the farm, in bytes.
struct FarmSpace
{
    struct Job
    {
        QString id;
        QString number; ///< of the job in the list of jobs
        QString name;
        int status = 0;
        qint64 files = 0; ///< of the scene; a file that several jobs use counts for each of them
        qint64 pictures = 0;

        friend bool operator==(const Job& one, const Job& other)
        {
            return one.id == other.id && one.number == other.number && one.name == other.name
                && one.status == other.status && one.files == other.files && one.pictures == other.pictures;
        }
    };

    qint64 quota = 0;    ///< the most that `used` may be
    qint64 used = 0;     ///< by files and unfinished uploads
    qint64 uploads = 0;  ///< the part of `used` that is unfinished
    qint64 unneeded = 0; ///< the part of `used` that no job needs
    qint64 pictures = 0; ///< finished pictures, which do not count
    std::vector<Job>
        jobs; ///< those with the largest files first; without deleted ones and those without files
    bool hasMoreJobs = false; ///< whether the farm has other jobs that take space

    /// @return none when the farm's answer is unusable.
    static std::optional<FarmSpace> Read(const QJsonObject& body);
};

/// @return for example "1.5 GiB", in the units in which farms set quotas.
QString SpaceText(qint64 bytes);
