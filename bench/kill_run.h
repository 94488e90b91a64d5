#pragma once

#include "tests/support/worker_process.h"

#include <QTemporaryDir>

#include <array>
#include <memory>
#include <random>
#include <stdexcept>

/// One run: a folder of its own and the moments of its kills, which follow from seed and number.
class KillRun
{
public:
    /// @param workTime how long the whole work takes, in ms; 0 for a rehearsal, which kills nothing.
    KillRun(unsigned seed, int number, double workTime);

    QString Path(const QString& name) const { return m_folder.filePath(name); }
    void KeepFolder() { m_folder.setAutoRemove(false); }

    /// Draws a number from 0 to `count` - 1.
    int Below(int count) { return int(m_random() % unsigned(count)); }
    /// The number of kills: none in a rehearsal, otherwise one or two.
    int Kills() const { return m_kills; }
    bool IsRehearsal() const { return m_kills == 0; }

    /// Lets the worker go on until the drawn moment.
    void LetWork(WorkerProcess& worker);
    /// Counts a kill by whether the work had `begun` and whether it was `done`.
    void Count(bool begun, bool done) { ++counts.at(done ? 2 : int(begun)); }
    /// Kills a worker at the drawn moment. The worker reports "begun" and "done" if it gets that far.
    void KillInWork(WorkerProcess& worker);

    std::array<int, 3> counts {}; ///< kills before, during and after the work
    QStringList moments;          ///< the moments of the kills, as text for the report

private:
    QTemporaryDir m_folder;
    std::mt19937 m_random;
    double m_workTime;
    int m_kills;
};

// The kinds of runs. Each does its whole work in the run's folder in spite of kills, and throws std::runtime_error when a
// promise is broken.
void KillDependencies(KillRun& run);
void KillUploads(KillRun& run);
void KillRenders(KillRun& run);
void KillDownloads(KillRun& run);

// The workers. Each runs in a process of its own.
int WorkOnDependencies(const QStringList& arguments);
int WorkOnUploads(const QStringList& arguments);
int WorkOnDownloads(const QStringList& arguments);

/// Starts this program as a worker.
std::unique_ptr<WorkerProcess> StartWorker(const QString& kind, const QStringList& arguments);
/// Starts the farm of a folder. It reports "listening on " and its URL.
std::unique_ptr<WorkerProcess> StartFarm(const QString& folder, const QStringList& more = {});
/// Lets a worker do the rest of its work and end.
void Finish(WorkerProcess& worker);
/// Reports a line to the process that started this one.
void Tell(const QString& line);
/// The names of all files below a folder, hidden ones too.
QStringList FilesBelow(const QString& folder);

inline void Require(bool isKept, const QString& what)
{
    if (!isKept)
        throw std::runtime_error(what.toStdString());
}
