#pragma once

#include "storage/queued_mutex.h"
#include "storage/reader_pool.h"

#include <QString>
#include <SQLiteCpp/SQLiteCpp.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

namespace storage {

/// SQL scripts: number n upgrades schema version n to n + 1. A released script never changes.
using Migrations = std::vector<const char*>;

/// A newer version of the program wrote the database.
class NewerSchema : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// A database file with one connection that writes, which threads get in the order in which they ask for it. Reads have
/// connections of their own if the database is opened with readers; otherwise they take turns with the writes.
/// Every change is on the disk when Write() returns. Errors are thrown as SQLite::Exception.
class Database
{
public:
    struct Options
    {
        /// The number of reads that can run at a time without waiting for a write or for each other; 0 for none.
        int readers = 0;
        /// Whether the file is copied before an older schema is brought up to date, see CopyName().
        bool keepsCopy = false;
    };

    /// Opens or creates the file and brings its schema up to date.
    /// Throws NewerSchema.
    Database(const QString& path, const Migrations& migrations, Options options = {0, false});

    /// The path of the copy that is kept of a database with this version of the schema.
    static QString CopyName(const QString& path, int version);

    /// Runs `work(SQLite::Database&)`, which must not change anything. It reads a snapshot of one moment, in which every
    /// Write() that has returned is included; inside a Write(), the changes so far are, too.
    template <typename Work>
    auto Read(Work work)
    {
        if (m_readers && m_writing != std::this_thread::get_id()) {
            const ReaderPool::Loan reader(*m_readers);
            return work(reader.Connection());
        }
        const std::lock_guard<QueuedMutex> lock(m_mutex);
        return work(m_connection);
    }

    /// Runs `work(SQLite::Database&)` as one transaction; an exception rolls it back.
    /// A Write() inside another one joins its transaction; the outer `work` must not catch the inner one's exceptions.
    template <typename Work>
    auto Write(Work work)
    {
        using Result = decltype(work(m_connection));
        if constexpr (std::is_void_v<Result>) {
            Transact(work);
        } else {
            std::optional<Result> result;
            Transact([&](SQLite::Database& connection) { result.emplace(work(connection)); });
            return std::move(*result);
        }
    }

    /// Runs `work` once the transaction of this thread has been committed and others can read its changes; never if it is
    /// rolled back, and at once if this thread is in none.
    void AfterCommit(std::function<void()> work);

    /// Gives the calling thread a reader of its own: its reads do not wait for those of other threads, however many there
    /// are. Call it while the thread is not reading.
    void ReserveReader();

    /// Whether another connection, perhaps in another process, has changed the database since the last call. The first
    /// call cannot know and returns true.
    bool WasChangedByOthers();

    /// Measures how the values in the indexes are distributed, by which SQLite chooses among the indexes. Takes
    /// milliseconds, however large the database is.
    void UpdateStatistics();

private:
    /// Records which thread is writing, for as long as this object lives.
    struct WritingThread
    {
        explicit WritingThread(std::atomic<std::thread::id>& place)
            : writing(place)
        {
            writing = std::this_thread::get_id();
        }
        ~WritingThread() { writing = std::thread::id(); }
        WritingThread(const WritingThread&) = delete;
        WritingThread& operator=(const WritingThread&) = delete;

        std::atomic<std::thread::id>& writing;
    };

    void Transact(const std::function<void(SQLite::Database&)>& work);
    void Migrate(const QString& path, const Migrations& migrations, bool keepsCopy);

    QueuedMutex m_mutex;
    SQLite::Database m_connection;
    std::unique_ptr<ReaderPool> m_readers; // null when reads take turns with the writes
    std::atomic<std::thread::id> m_writing {};
    std::vector<std::function<void()>> m_afterCommit; // work queued in the open transaction
    std::int64_t m_dataVersion = 0;
};

QString Text(const SQLite::Column& column);

template <typename Value>
void BindAt(SQLite::Statement& statement, int index, const Value& value)
{
    if constexpr (std::is_same_v<Value, QString>)
        statement.bind(index, value.toStdString());
    else if constexpr (std::is_integral_v<Value>)
        statement.bind(
            index, static_cast<std::int64_t>(value)); // qint64 and std::int64_t are different types here
    else
        statement.bind(index, value);
}

/// Binds the values to the placeholders in order, beginning with the first.
template <typename... Values>
void Bind(SQLite::Statement& statement, const Values&... values)
{
    int index = 0;
    (BindAt(statement, ++index, values), ...);
}

/// Runs a statement that yields no rows; returns the number of rows that it changed.
template <typename... Values>
int Execute(SQLite::Database& connection, const char* sql, const Values&... values)
{
    SQLite::Statement statement(connection, sql);
    Bind(statement, values...);
    return statement.exec();
}

} // namespace storage
