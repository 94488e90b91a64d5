#include "host/rendercore/download/task_loader.h"

#include "host/rendercore/attempt.h"
#include "host/rendercore/download/download_store.h"

namespace {

constexpr int BatchSize = 2000;

} // namespace

TaskLoader::TaskLoader(DownloadStore* store, int retryPause)
    : m_store(store)
    , m_retryPause(retryPause)
    , m_timer(this)
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &TaskLoader::LoadBatch);
}

void TaskLoader::Start(const QString& owner)
{
    m_owner = owner;
    m_lastId = 0;
    m_isLoading = !owner.isEmpty();
    m_timer.stop();
    Continue();
}

void TaskLoader::Continue()
{
    if (m_isLoading)
        m_timer.start(0);
}

void TaskLoader::LoadBatch()
{
    DownloadTasks tasks;
    if (!Attempt("read the downloads", [&] { tasks = m_store->TasksAfter(m_owner, m_lastId, BatchSize); })) {
        m_timer.start(m_retryPause);
        return;
    }
    m_isLoading = tasks.size() == BatchSize;
    if (!tasks.isEmpty()) {
        m_lastId = tasks.constLast().id;
        emit Loaded(tasks);
    }
    if (!m_isLoading)
        emit Done();
}
