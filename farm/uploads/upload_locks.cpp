#include "farm/uploads/upload_locks.h"

#include "farm/base/errors.h"

#include <chrono>

namespace farm {

namespace {

using namespace std::chrono_literals;
constexpr auto LongestWait = 500ms;

} // namespace

UploadLocks::Hold::Hold(UploadLocks& locks, const QString& id)
    : m_locks(locks)
    , m_id(id)
{
    std::unique_lock<std::mutex> lock(m_locks.m_mutex);
    if (!m_locks.m_released.wait_for(lock, LongestWait, [this] { return !m_locks.m_held.contains(m_id); }))
        throw Busy("another request is working on this upload");
    m_locks.m_held.insert(m_id);
}

UploadLocks::Hold::~Hold()
{
    const std::lock_guard<std::mutex> lock(m_locks.m_mutex);
    m_locks.m_held.remove(m_id);
    m_locks.m_released.notify_all();
}

} // namespace farm
