#pragma once

#include <QString>
#include <SQLiteCpp/SQLiteCpp.h>

#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace storage {

/// Connections to a database that only read, one for each thread that reads at the moment. Thread-safe.
class ReaderPool
{
public:
    /// @param most is the most connections; further threads wait for one.
    ReaderPool(const QString& path, int most);

    /// Gives the calling thread a connection of its own, so that it never waits for one.
    void Reserve();

    /// Lends the thread a connection. A thread that has one already gets the same.
    class Loan
    {
    public:
        explicit Loan(ReaderPool& pool);
        ~Loan();
        Loan(const Loan&) = delete;
        Loan& operator=(const Loan&) = delete;

        SQLite::Database& Connection() const { return *m_connection; }

    private:
        ReaderPool& m_pool;
        SQLite::Database* m_connection = nullptr;
        std::unique_ptr<SQLite::Transaction> m_snapshot; // null when an outer loan has one
    };

private:
    SQLite::Database* Lent() const;
    SQLite::Database& Take();
    void GiveBack();
    std::unique_ptr<SQLite::Database> Open() const;

    const QString m_path;
    const std::size_t m_most;
    mutable std::mutex m_mutex;
    std::condition_variable m_returned;
    std::vector<std::unique_ptr<SQLite::Database>> m_connections;
    std::vector<SQLite::Database*> m_idle;
    std::map<std::thread::id, SQLite::Database*> m_lent;
    std::map<std::thread::id, std::unique_ptr<SQLite::Database>> m_reserved;
};

} // namespace storage
