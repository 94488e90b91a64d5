#pragma once

#include "farm/rendering/executor.h"

#include <map>
#include <memory>

namespace farm {

class RenderProcess;

/// Runs renderers as processes on this machine at a low priority. They end with the farm, even if it is killed.
class LocalExecutor : public Executor
{
public:
    /// Ends the processes that renderers of an earlier farm on this folder have left behind.
    LocalExecutor(int slotCount, const QString& dataFolder);
    ~LocalExecutor() override;

    int Slots() const override { return m_slots; }
    bool Has(const QString& program) const override;
    void Start(const FrameKey& frame, const RenderCommand& command, Ended ended) override;
    void Cancel(const FrameKey& frame) override;

private:
    int m_slots;
    QString m_dataFolder;
    std::map<FrameKey, std::unique_ptr<RenderProcess>> m_processes;
};

} // namespace farm
