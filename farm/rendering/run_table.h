#pragma once

#include "farm/base/schema.h"
#include "farm/rendering/frame_task.h"
#include "farm/runner/run.h"

#include <functional>
#include <vector>

namespace farm {

/// The runs in work, in the database: from it a restarted farm learns which frames may still be in work somewhere.
class RunTable
{
public:
    explicit RunTable(Database& database);

    struct Entry
    {
        RunId id;
        /// Only the members that identify the frame and its job's folder and type are set.
        FrameTask task;
        QString handle;
    };

    static RunId NewRunId(const FrameKey& frame);

    /// Records runs that are about to start, in the transaction in which `record` marks their jobs.
    void Begin(const std::vector<Entry>& runs, const std::function<void()>& record);
    void SetHandle(const RunId& run, const QString& handle);
    /// Forgets the run in the transaction in which `record` records its end.
    void End(const RunId& run, const std::function<void()>& record);
    std::vector<Entry> All();

private:
    Database& m_database;
};

} // namespace farm
