#include "host/rendercore/download/finished_cleanup.h"

#include "host/rendercore/attempt.h"
#include "host/rendercore/download/download_store.h"

#include <QDateTime>

#include <algorithm>
#include <limits>

namespace {

constexpr int BatchSize = 2000;
constexpr int Interval = 3600 * 1000; // ms
constexpr qint64 Day = 24LL * 3600;   // s

} // namespace

FinishedCleanup::FinishedCleanup(DownloadStore* store, int retryPause)
    : m_store(store)
    , m_retryPause(retryPause)
    , m_timer(this)
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &FinishedCleanup::RemoveBatch);
}

void FinishedCleanup::SetOwner(const QString& owner)
{
    m_owner = owner;
    m_clearBefore = 0;
    m_timer.start(0);
}

void FinishedCleanup::SetKeepDays(int days)
{
    m_keepDays = days;
    m_timer.start(0);
}

void FinishedCleanup::ClearAll()
{
    // The clock may have been set back since a file finished.
    m_clearBefore = std::numeric_limits<qint64>::max();
    m_timer.start(0);
}

void FinishedCleanup::RemoveBatch()
{
    if (m_owner.isEmpty())
        return;
    const qint64 old = m_keepDays > 0 ? QDateTime::currentSecsSinceEpoch() - m_keepDays * Day : 0;
    TaskIds removed;
    if (!Attempt("remove finished downloads from the list",
            [&] { removed = m_store->RemoveFinished(m_owner, std::max(old, m_clearBefore), BatchSize); })) {
        m_timer.start(m_retryPause);
        return;
    }
    const bool isDone = removed.size() < BatchSize;
    if (isDone)
        m_clearBefore = 0;
    m_timer.start(isDone ? Interval : 0);
    if (!removed.isEmpty())
        emit Removed(removed);
}
