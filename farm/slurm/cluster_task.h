#pragma once

#include <QByteArray>
#include <QString>

#include <vector>

namespace farm {

/// One task of an array job, as Slurm reports it.
struct ClusterTask
{
    /// The job's name: that of the batch.
    QString batch;
    int index = 0; ///< its index in the array
    /// Slurm's name for the task, such as "1234_5".
    QString id;
    /// Slurm's state of the task in capital letters, such as "NODE_FAIL".
    QString state;
    QString node;   ///< empty until it has begun
    QString reason; ///< why it waits or has failed; may be empty
};

/// The option that makes squeue print the format that ReadQueue() reads.
constexpr const char* QueueFormat = "%j|%F|%K|%T|%N|%r";
/// The tasks in the output of squeue. Lines that do not describe tasks of arrays are left out.
std::vector<ClusterTask> ReadQueue(const QByteArray& output);

/// The option that makes sacct print the format that ReadAccounting() reads.
constexpr const char* AccountingFormat = "JobName,JobID,State,NodeList";
std::vector<ClusterTask> ReadAccounting(const QByteArray& output);

} // namespace farm
