#pragma once

#include "farm/runner/output_log.h"
#include "farm/runner/processor_time.h"
#include "farm/runner/renderer.h"
#include "farm/runner/run_order.h"

#include <chrono>
#include <optional>

namespace farm {

/// Runs a renderer to its end and watches over its limits. It takes over the process: its signals, and all processes below
/// it, which end with the renderer.
class FrameRunner
{
public:
    /// Throws std::runtime_error.
    explicit FrameRunner(const RunOrder& order);
    ~FrameRunner();
    FrameRunner(const FrameRunner&) = delete;
    FrameRunner& operator=(const FrameRunner&) = delete;

    /// SIGTERM cancels the run; so does the end of the parent, if it has bound this process to its own life.
    RunResult Run();

private:
    struct Verdict
    {
        RunEnd end = RunEnd::Done;
        QString message;
    };

    void TakeSignals();
    void Watch(int output);
    void HandleSignals();
    void LookAtUse();
    void LookAtOutput();
    std::int64_t CoreMilliseconds() const;
    std::int64_t MemoryLimit() const;
    void ReadOutput(int output);
    Verdict Judge() const;
    Verdict JudgeStatus() const;
    bool MissesLicence() const;

    RunOrder m_order;
    OutputLog m_log;
    std::chrono::steady_clock::time_point m_deadline;
    std::chrono::steady_clock::time_point m_nextLook;
    std::chrono::steady_clock::time_point m_nextOutputLook;
    ProcessorTime m_time;
    int m_signals = -1;
    /// The reason for ending the run before the renderer ends by itself.
    std::optional<Verdict> m_verdict;
    /// The renderer's status once it has ended.
    std::optional<int> m_status;
    pid_t m_renderer = -1;
};

} // namespace farm
