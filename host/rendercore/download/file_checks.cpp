#include "host/rendercore/download/file_checks.h"

#include "storage/checksum.h"

#include <QFileInfo>
#include <QThread>

#include <exception>

namespace {

bool IsQuitting()
{
    return QThread::currentThread()->isInterruptionRequested();
}

bool IsWhole(const DownloadTask& task)
{
    if (QFileInfo(task.file).size() != task.size)
        return false;
    try {
        return storage::FileChecksum(task.file, [](qint64) { return !IsQuitting(); }) == task.checksum;
    } catch (const std::exception&) {
        return false;
    }
}

} // namespace

FileChecks::FileChecks()
    : m_turn(this)
{
    m_turn.setSingleShot(true);
    connect(&m_turn, &QTimer::timeout, this, &FileChecks::CheckNext);
}

void FileChecks::Add(const DownloadTasks& tasks)
{
    m_tasks.insert(m_tasks.end(), tasks.cbegin(), tasks.cend());
    m_turn.start(0);
}

void FileChecks::CheckNext()
{
    if (m_tasks.empty())
        return;
    const DownloadTask task = m_tasks.front();
    m_tasks.pop_front();
    m_turn.start(0);
    if (!IsWhole(task) && !IsQuitting())
        emit Damaged(task.id);
}
