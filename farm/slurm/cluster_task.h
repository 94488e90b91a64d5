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
    int index = 0; ///< in the array
    /// Slurm's name for the task, such as "1234_5".
    QString id;
    /// In capital letters, such as "NODE_FAIL".
    QString state;
    QString node;   ///< empty until it has begun
    QString reason; ///< why it waits or has failed; may be empty
};

/// The option of squeue under which it prints what ReadQueue() reads.
constexpr const char* QueueFormat = "%j|%F|%K|%T|%N|%r";
/// The tasks in the output of squeue. Lines that are no tasks of arrays are left out.
std::vector<ClusterTask> ReadQueue(const QByteArray& output);

/// The option of sacct under which it prints what ReadAccounting() reads.
constexpr const char* AccountingFormat = "JobName,JobID,State,NodeList";
std::vector<ClusterTask> ReadAccounting(const QByteArray& output);

} // namespace farm
