#pragma once

#include "host/rendercore/submit/farm_stages.h"
#include "host/rendercore/submit/stage_outcome.h"

#include <QElapsedTimer>
#include <QObject>
#include <QSet>

#include <functional>
#include <memory>

class SubmitWorker;

/// Something for the worker to do, on its way to its thread.
using WorkerErrand = std::function<void(SubmitWorker&)>;
Q_DECLARE_METATYPE(WorkerErrand)

/// Does one stage at a time in a thread of its own. Every function is called in that thread.
class SubmitWorker : public QObject
{
    Q_OBJECT

public:
    void Do(const WorkerErrand& errand) { errand(*this); }

    /// Does a stage and reports by Ended(), once. No other order may be given before.
    void Run(const StageOrder& order);

    /// Looks at the flag of the order under way, also while it waits for the farm.
    void Interrupt();

    /// Deletes a task's packages.
    static void Discard(const QString& folder);

    /// Deletes the packages of all tasks but these.
    static void Sweep(const QString& folder, const QSet<qint64>& numbers);

signals:
    /// At most four times a second.
    void Progress(qint64 number, int percent, const QString& text);
    void Ended(qint64 number, const StageOutcome& outcome);

private:
    StageOutcome DoStage(const StageOrder& order, const StageProgress& onProgress);

    std::unique_ptr<FarmStages> m_farm; // made in this thread
    QElapsedTimer m_lastProgress;
};
