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
    /// Ends the processes that renderers of an earlier farm on this folder have left behind.
    LocalExecutor(int slotCount, const QString& dataFolder);
    ~LocalExecutor() override;

    int Capacity() const override { return m_slots; }
    Availability Has(const JobType& type) override;
    void Start(const std::vector<Run>& runs) override;
    void Cancel(const RunId& run) override;
    void Attach(const std::vector<RecordedRun>& runs) override;
    void Stop() override;

private:
    void StartOne(const Run& run);
    /// Reports the end from the event loop.
    void EndLater(const RunId& run, const RunResult& result);

    int m_slots;
    QString m_dataFolder;
    std::map<RunId, std::unique_ptr<RenderProcess>> m_processes;
};

} // namespace farm
