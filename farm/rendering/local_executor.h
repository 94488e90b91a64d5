#pragma once

#include "farm/rendering/executor.h"

#include <map>
#include <memory>

namespace farm {

class RenderProcess;

/// Runs renderers as processes on this machine at a low priority. They end with the farm, even if it is killed.
class LocalExecutor : public Executor
{
    Q_OBJECT

public:
    struct Settings
    {
        /// The number of frames that are rendered at a time.
        int slotCount = 1;
        QString dataFolder;
        /// The path of quillstar-run-frame.
        QString runner;
    };

    /// Ends the processes that renderers of an earlier farm process on this folder have left behind.
    explicit LocalExecutor(const Settings& settings);
    ~LocalExecutor() override;

    int Capacity() const override { return m_settings.slotCount; }
    void SetCapacity(int runs) override { m_settings.slotCount = runs; }
    Availability Has(const JobType& type) override;
    QString HindranceOf(const JobType& type) const override;
    void Start(const std::vector<Run>& runs) override;
    void Cancel(const RunId& run) override;
    void Attach(const std::vector<RecordedRun>& runs) override;
    void Stop() override;

private:
    void StartOne(const Run& run);
    void HandleEnd(const RunId& run, const RunResult& result);
    /// Reports the end from the event loop.
    void EndLater(const RunId& run, const RunResult& result);

    Settings m_settings;
    std::map<RunId, std::unique_ptr<RenderProcess>> m_processes;
};

} // namespace farm
