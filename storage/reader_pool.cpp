#include "storage/reader_pool.h"

namespace storage {

namespace {

constexpr int BusyTimeout = 5000; // ms

} // namespace

ReaderPool::ReaderPool(const QString& path, int most)
    : m_path(path)
    , m_most(std::size_t(most))
{
}

void ReaderPool::Reserve()
{
    const std::lock_guard lock(m_mutex);
    std::unique_ptr<SQLite::Database>& reserved = m_reserved[std::this_thread::get_id()];
    if (!reserved)
        reserved = Open();
}

ReaderPool::Loan::Loan(ReaderPool& pool)
    : m_pool(pool)
    , m_connection(pool.Lent())
{
    if (m_connection)
        return;
    m_connection = &pool.Take();
    try {
        m_snapshot = std::make_unique<SQLite::Transaction>(*m_connection);
    } catch (...) {
        pool.GiveBack();
        throw;
    }
}

ReaderPool::Loan::~Loan()
{
    if (!m_snapshot)
        return;
    m_snapshot.reset();
    m_pool.GiveBack();
}

SQLite::Database* ReaderPool::Lent() const
{
    const std::lock_guard lock(m_mutex);
    const auto lent = m_lent.find(std::this_thread::get_id());
    return lent != m_lent.end() ? lent->second : nullptr;
}

SQLite::Database& ReaderPool::Take()
{
    std::unique_lock lock(m_mutex);
    const auto reserved = m_reserved.find(std::this_thread::get_id());
    if (reserved != m_reserved.end()) {
        m_lent.emplace(std::this_thread::get_id(), reserved->second.get());
        return *reserved->second;
    }
    m_returned.wait(lock, [this] { return !m_idle.empty() || m_connections.size() < m_most; });
    if (m_idle.empty()) {
        m_connections.push_back(Open());
        m_idle.push_back(m_connections.back().get());
    }
    SQLite::Database* const connection = m_idle.back();
    m_idle.pop_back();
    m_lent.emplace(std::this_thread::get_id(), connection);
    return *connection;
}

void ReaderPool::GiveBack()
{
    {
        const std::lock_guard lock(m_mutex);
        const auto lent = m_lent.find(std::this_thread::get_id());
        if (m_reserved.count(lent->first) == 0)
            m_idle.push_back(lent->second);
        m_lent.erase(lent);
    }
    m_returned.notify_one();
}

// Even a connection that only reads has to write to the index of the log, which all connections share.
std::unique_ptr<SQLite::Database> ReaderPool::Open() const
{
    auto connection
        = std::make_unique<SQLite::Database>(m_path.toStdString(), SQLite::OPEN_READWRITE, BusyTimeout);
    connection->exec("PRAGMA query_only = ON");
    return connection;
}

} // namespace storage
