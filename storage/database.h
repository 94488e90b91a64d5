#pragma once

#include <QString>
#include <sqlite3.h>
#include <SQLiteCpp/SQLiteCpp.h>

#include <cstdint>
#include <mutex>
#include <type_traits>
#include <vector>

namespace storage {

/// SQL scripts; number n leads from schema version n to n + 1. Those that were released are never changed.
using Migrations = std::vector<const char*>;

/// A database file: one connection, used by one thread at a time.
/// Every change is on the disk when Write() returns. Errors are thrown as SQLite::Exception.
class Database
{
public:
    /// Opens or creates the file and brings its schema up to date.
    /// Throws std::runtime_error when a newer program has written it.
    Database(const QString& path, const Migrations& migrations);

    /// Runs `work(SQLite::Database&)` while nobody else uses the connection.
    template <typename Work>
    auto Read(Work work)
    {
        const std::lock_guard<std::recursive_mutex> lock(m_mutex);
        return work(m_connection);
    }

    /// Runs `work(SQLite::Database&)` as one transaction; an exception leaves everything as it was.
    /// Inside of another Write() it becomes part of that one, which must let its exceptions pass.
    template <typename Work>
    auto Write(Work work)
    {
        const std::lock_guard<std::recursive_mutex> lock(m_mutex);
        if (sqlite3_get_autocommit(m_connection.getHandle()) == 0)
            return work(m_connection);
        SQLite::Transaction transaction(m_connection, SQLite::TransactionBehavior::IMMEDIATE);
        if constexpr (std::is_void_v<decltype(work(m_connection))>) {
            work(m_connection);
            transaction.commit();
        } else {
            auto result = work(m_connection);
            transaction.commit();
            return result;
        }
    }

private:
    void Migrate(const Migrations& migrations);

    std::recursive_mutex m_mutex;
    SQLite::Database m_connection;
};

QString Text(const SQLite::Column& column);

template <typename Value>
void BindAt(SQLite::Statement& statement, int index, const Value& value)
{
    if constexpr (std::is_same_v<Value, QString>)
        statement.bind(index, value.toStdString());
    else if constexpr (std::is_integral_v<Value>)
        statement.bind(index, static_cast<std::int64_t>(value)); // qint64 is another type than that one
    else
        statement.bind(index, value);
}

/// Gives the placeholders their values, from the first on.
template <typename... Values>
void Bind(SQLite::Statement& statement, const Values&... values)
{
    int index = 0;
    (BindAt(statement, ++index, values), ...);
}

/// Runs a statement that returns no rows; returns how many rows it changed.
template <typename... Values>
int Execute(SQLite::Database& connection, const char* sql, const Values&... values)
{
    SQLite::Statement statement(connection, sql);
    Bind(statement, values...);
    return statement.exec();
}

} // namespace storage
