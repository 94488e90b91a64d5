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

/// The result of preparing or settling the files of a run.
struct FileReport
{
    enum class Fault {
        None,
        Scene, ///< the scene or its renderer; another attempt would end in the same way
        Farm,  ///< the disk, perhaps a full one, or the database
    };
    Fault fault = Fault::None;
    /// The reason of the fault, for the user.
    QString message = {};
    /// Whether there is a picture that could not be moved to its place. The farm is at fault.
    bool isPictureLeft = false;
    /// The run that is ready to start, when it was prepared.
    std::optional<Run> run = {};
    /// The picture in its place, when the renderer left one that was to be kept.
    std::optional<Picture> picture = {};
};

/// Does the scheduler's work on files in threads of its own, since large scenes and pictures take minutes. Belongs to
/// the scheduler's thread, in which it reports.
class FrameWorker : public QObject
{
    Q_OBJECT

public:
    FrameWorker(const FrameFiles& files, const JobTypes& types, const Renderers& renderers);
    ~FrameWorker() override;

    /// Once it is set, the work that it was passed to ends soon and reports a fault.
    using Flag = std::shared_ptr<std::atomic_bool>;

    /// Provides the scene and writes the order. Prepared() follows.
    void Prepare(const RunId& id, const FrameTask& task, const Flag& isUnwanted);
    /// Keeps the picture of a run that is done; finds out whether a failed one may have failed because of a full disk.
    /// Settled() follows when the log is in its place.
    /// @param mayBeKept says that the picture may be in its place already.
    void Settle(const RunId& id, const FrameTask& task, RunEnd end, bool mayBeKept);
    /// Removes what is left of the run.
    void Discard(const RunId& id, const FrameTask& task, bool keepsLog);
    /// Interrupts all work and returns when it has ended; nothing is reported any more.
    void Stop();

signals:
    void Prepared(const QString& run, const farm::FileReport& report);
    void Settled(const QString& run, const farm::FileReport& report);

private:
    FileReport PrepareNow(const RunId& id, const FrameTask& task, const Flag& isUnwanted) const;
    FileReport SettleNow(const RunId& id, const FrameTask& task, RunEnd end, bool mayBeKept) const;

    const FrameFiles& m_files;
    JobTypes m_types;
    Renderers m_renderers;
    std::atomic_bool m_isStopped {false};
    /// Scenes and pictures have workers of their own, so that finished pictures do not wait behind large scenes.
    JobWorkers m_preparers;
    JobWorkers m_keepers;
};

} // namespace farm

Q_DECLARE_METATYPE(farm::FileReport)
