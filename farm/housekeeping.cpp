#include "farm/housekeeping.h"

#include "farm/accounts/audit.h"
#include "farm/base/local_time.h"
#include "farm/data_mark.h"
#include "farm/rendering/job_folders.h"
#include "farm/uploads/content_store.h"

#include <spdlog/spdlog.h>

#include <exception>

namespace farm {

namespace {

constexpr std::chrono::minutes Interval {10};
// Gives the renderers of deleted jobs time to end, which takes a while on other machines.
constexpr std::chrono::seconds Pause {2};

} // namespace

Housekeeping::Housekeeping(const Dependencies& dependencies, const Times& times)
    : m_deps(dependencies)
    , m_times(times)
    , m_thread([this] { Run(); })
{
}

Housekeeping::~Housekeeping()
{
    m_isStopped = true;
    Wake();
    m_thread.join();
}

void Housekeeping::Wake()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_isWoken = true;
    m_wake.notify_one();
}

void Housekeeping::Run()
{
    while (!m_isStopped) {
        const std::chrono::milliseconds pause = Work();
        std::unique_lock<std::mutex> lock(m_mutex);
        m_wake.wait_for(lock, pause, [this] { return m_isWoken; });
        m_isWoken = false;
    }
}

/// Returns the time until there is something to do, unless it is woken before.
std::chrono::milliseconds Housekeeping::Work()
{
    try {
        const auto goOn = [this] { return !m_isStopped; };
        const bool areFreed = m_deps.folders.FreeDeleted(goOn);
        const bool areTidy = m_deps.folders.Tidy(goOn);
        m_areRunsLeft = m_areRunsLeft && !m_deps.folders.RemoveEndedRuns(goOn);
        const std::int64_t now = Now();
        m_deps.contents.ForgetUnneeded(now - std::chrono::seconds(m_times.contents).count(), now, goOn);
        const std::int64_t oldAudit = now - std::chrono::seconds(m_times.audit).count();
        while (goOn() && ForgetAuditEntries(m_deps.database, oldAudit)) { }
        if (std::chrono::steady_clock::now() >= m_nextMark) {
            m_deps.mark.Advance();
            m_nextMark = std::chrono::steady_clock::now() + Interval;
        }
        return areFreed && areTidy && !m_areRunsLeft ? std::chrono::milliseconds(Interval)
                                                     : std::chrono::milliseconds(Pause);
    } catch (const std::exception& error) {
        spdlog::error("files that nobody needs cannot be removed; the farm tries again: {}", error.what());
        return Interval;
    }
}

} // namespace farm
