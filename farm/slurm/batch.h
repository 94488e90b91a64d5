#pragma once

#include "farm/runner/run.h"
#include "farm/slurm/slurm_settings.h"

#include <QStringList>

#include <vector>

namespace farm {

struct JobType;

/// Where runs of a type go on the cluster, and the resources that their tasks ask for. Runs with equal placements share
/// array jobs.
struct Placement
{
    QString partition;
    QString account;
    QString qos;
    QString constraint;
    int framesPerTask = 1;
    Resources resources;
};

bool operator<(const Placement& one, const Placement& other);

/// The placement from the settings, with the type's own values where it has any.
Placement PlacementFor(const SlurmSettings& settings, const JobType& type);

/// An array job: each task renders some runs, one after another.
struct Batch
{
    /// The name of the job on the cluster, which is never used again.
    QString name;
    Placement placement;
    std::vector<RunId> runs;
    /// The job type of all runs.
    QString type = {};
    /// The key of the farm's job that all runs belong to; set when tasks render several runs.
    std::int64_t job = 0;

    /// The task, counted from 1, that renders the run at this place, counted from 0.
    int TaskOf(int run) const { return run / placement.framesPerTask + 1; }
    int TaskCount() const { return TaskOf(static_cast<int>(runs.size()) - 1); }
};

/// A text quoted as one word of a shell command.
QString Quoted(QString text);

/// The prefix of the names of all jobs that farms submit.
QString ClusterJobPrefix();

/// A new name, which contains the number of frames per task.
QString NewBatchName(int framesPerTask);
int FramesPerTask(const QString& batchName);

/// The arguments of sbatch, which reads the script from its standard input.
/// @param leftOut names nodes that are to get none of the tasks.
QStringList SubmitArguments(const Batch& batch, const QStringList& leftOut = {});

/// The script that each task runs.
/// @param list is a file that every node sees, with the folder of a run in each line, in the order of the batch.
/// @param runner is quillstar-run-frame on the nodes.
QByteArray BatchScript(int framesPerTask, const QString& list, const QString& runner);

} // namespace farm
