#pragma once

#include "farm/rendering/executor.h"
#include "farm/rendering/job_workers.h"
#include "farm/rendering/picture.h"
#include "farm/rendering/render_order.h"

#include <QObject>

#include <atomic>
#include <memory>
#include <optional>

namespace farm {

/// The outcome of work on the files of a run.
struct FileReport
{
    bool ok = false;
    /// Why not, for the user.
    QString message;
    bool isDiskFull = false;
    /// The run that is ready to start, when it was prepared.
    std::optional<Run> run;
    /// The picture in its place, when the renderer left one that was to be kept.
    std::optional<Picture> picture;
};

/// Does the scheduler's work on files in threads of its own: large scenes and pictures take minutes. Belongs to the
/// scheduler's thread, in which it reports.
class FrameWorker : public QObject
{
    Q_OBJECT

public:
    FrameWorker(const FrameFiles& files, const JobTypes& types, const Renderers& renderers);
    ~FrameWorker() override;

    /// Once set, the work that carries it ends soon, with a report that is not ok.
    using Flag = std::shared_ptr<std::atomic_bool>;

    /// Provides the scene and writes the order. Prepared() follows.
    void Prepare(const RunId& id, const FrameTask& task, const Flag& isUnwanted);
    /// Keeps the picture of a run that is done. Finds out for a failed one whether a full disk may be the reason. Settled()
    /// follows, when the log is in its place.
    /// @param isOld says that an earlier farm may have kept the picture.
    void Settle(const RunId& id, const FrameTask& task, RunEnd end, bool isOld);
    /// Removes what is left of the run.
    void Discard(const RunId& id, const FrameTask& task);
    /// Interrupts all work and returns when it has ended; nothing is reported any more.
    void Stop();

signals:
    void Prepared(const QString& run, const farm::FileReport& report);
    void Settled(const QString& run, const farm::FileReport& report);

private:
    FileReport PrepareNow(const RunId& id, const FrameTask& task, const Flag& isUnwanted) const;
    FileReport SettleNow(const RunId& id, const FrameTask& task, RunEnd end, bool isOld) const;

    const FrameFiles& m_files;
    JobTypes m_types;
    Renderers m_renderers;
    std::atomic_bool m_isStopped {false};
    /// Finished pictures do not wait behind large scenes.
    JobWorkers m_preparers;
    JobWorkers m_keepers;
};

} // namespace farm

Q_DECLARE_METATYPE(farm::FileReport)
