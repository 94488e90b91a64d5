#pragma once

#include <QMetaType>
#include <QString>
#include <QStringList>

#include <chrono>
#include <cstdint>

namespace farm {

/// Identifies one run of a renderer for all time, across restarts of the farm: "j12-r1-f7-3f9a1c02".
using RunId = QString;

enum class RunEnd {
    /// The renderer succeeded; the farm still has to find out whether it left a picture.
    Done,
    SceneFault,
    TimeLimit,
    Cancelled,
    MachineLost,
    Preempted,
    LicenceMissing,
    /// The farm or the machine is at fault: the renderer could not be started or watched, or left no report.
    FarmFault,
};

/// Whether the end counts as one of the frame's attempts. After other ends the frame is simply tried again.
inline bool CountsAsAttempt(RunEnd end)
{
    return end == RunEnd::SceneFault || end == RunEnd::TimeLimit;
}

struct RunResult
{
    RunEnd end = RunEnd::FarmFault;
    /// The reason why the run is not Done, for the user.
    QString message;
    /// The end of the renderer's output.
    QString log;
    /// The processor time of the renderer and of all programs that it has started.
    std::int64_t coreMilliseconds = 0;
    /// The machine on which it ran; empty when it did not.
    QString host;
    /// The time for which the renderer ran.
    std::int64_t seconds = 0;
};

/// Resources that a run asks for, and its limits.
struct Resources
{
    int cores = 1;
    /// Bytes; 0 leaves the choice to the executor.
    std::int64_t memory = 0;
    int gpus = 0;
    QStringList licences;
    std::chrono::seconds timeLimit {3600};
    /// The most processes and threads at a time.
    int processes = 1024;
    /// The largest size of a file that the renderer writes, in bytes.
    std::int64_t fileSize = std::int64_t {16} << 30;
    /// The largest sum of the files in its output folder, in bytes; 0 for no limit.
    std::int64_t outputSize = fileSize;
};

/// The files of a run, by absolute paths that are the same on every machine that may run it.
struct RunFiles
{
    /// The run's folder; the renderer may write only its picture there.
    QString folder;

    /// The order in JSON, for the program quillstar-run-frame. It exists before the run is started.
    QString Order() const { return folder + QStringLiteral("/order.json"); }
    /// The report of quillstar-run-frame at the end, in JSON. The file is complete once it exists.
    QString Outcome() const { return folder + QStringLiteral("/outcome.json"); }
    /// The renderer's whole output.
    QString Log() const { return folder + QStringLiteral("/log.txt"); }
    /// The folder into which the renderer writes.
    QString OutputFolder() const { return folder + QStringLiteral("/output"); }
};

} // namespace farm

Q_DECLARE_METATYPE(farm::RunResult)
