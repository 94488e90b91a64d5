#include "host/rendercore/download/file_checks.h"

#include "host/rendercore/file_hashing.h"

FileChecks::FileChecks()
    : m_turn(this)
{
    m_turn.setSingleShot(true);
    connect(&m_turn, &QTimer::timeout, this, &FileChecks::CheckNext);
}

FileChecks::~FileChecks() = default;

void FileChecks::Add(const DownloadTasks& tasks)
{
    m_tasks.insert(m_tasks.end(), tasks.cbegin(), tasks.cend());
    if (!m_hashing)
        m_turn.start(0);
}

void FileChecks::Clear()
{
    m_hashing.reset();
    m_file.close();
    m_tasks.clear();
}

void FileChecks::CheckNext()
{
    if (m_tasks.empty())
        return;
    const DownloadTask& task = m_tasks.front();
    m_file.setFileName(task.file);
    if (!m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered) || m_file.size() != task.size) {
        Conclude(false);
        return;
    }
    m_hashing = std::make_unique<FileHashing>(&m_file);
    connect(m_hashing.get(), &FileHashing::Finished, this, [this] {
        const bool isWhole = m_hashing->IsComplete() && m_hashing->Checksum() == m_tasks.front().checksum;
        // The hashing is emitting this signal, so it cannot be deleted here.
        m_hashing.release()->deleteLater();
        Conclude(isWhole);
    });
}

void FileChecks::Conclude(bool isWhole)
{
    m_file.close(); // an open file would keep its disk from being unmounted
    const qint64 id = m_tasks.front().id;
    m_tasks.pop_front();
    m_turn.start(0);
    if (!isWhole)
        emit Damaged(id);
}
