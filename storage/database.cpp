#include "storage/database.h"

#include "storage/backup.h"

#include <QFileInfo>
#include <sqlite3.h>

#include <string>

namespace storage {

namespace {

constexpr int BusyTimeout = 5000; // ms

} // namespace

Database::Database(const QString& path, const Migrations& migrations, Options options)
    : m_connection(path.toStdString(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE, BusyTimeout)
{
    m_connection.exec("PRAGMA journal_mode = WAL");
    m_connection.exec("PRAGMA synchronous = FULL");
    m_connection.exec("PRAGMA foreign_keys = ON");
    Migrate(path, migrations, options.keepsCopy);
    if (options.readers > 0)
        m_readers = std::make_unique<ReaderPool>(path, options.readers);
}

void Database::Transact(const std::function<void(SQLite::Database&)>& work)
{
    std::vector<std::function<void()>> committed;
    {
        const std::lock_guard<QueuedMutex> lock(m_mutex);
        if (sqlite3_get_autocommit(m_connection.getHandle()) == 0) {
            work(m_connection);
            return;
        }
        const WritingThread writing(m_writing);
        SQLite::Transaction transaction(m_connection, SQLite::TransactionBehavior::IMMEDIATE);
        m_afterCommit.clear();
        work(m_connection);
        transaction.commit();
        committed = std::exchange(m_afterCommit, {});
    }
    for (const std::function<void()>& next : committed)
        next();
}

void Database::AfterCommit(std::function<void()> work)
{
    if (m_writing == std::this_thread::get_id())
        m_afterCommit.push_back(std::move(work));
    else
        work();
}

void Database::ReserveReader()
{
    if (m_readers)
        m_readers->Reserve();
}

QString Database::CopyName(const QString& path, int version)
{
    const QFileInfo file(path);
    return QStringLiteral("%1/%2-version-%3.%4")
        .arg(file.path(), file.completeBaseName(), QString::number(version), file.suffix());
}

bool Database::WasChangedByOthers()
{
    const std::lock_guard<QueuedMutex> lock(m_mutex);
    const std::int64_t version = m_connection.execAndGet("PRAGMA data_version").getInt64();
    return std::exchange(m_dataVersion, version) != version;
}

void Database::UpdateStatistics()
{
    constexpr const char* FewRows = "PRAGMA analysis_limit = 400";
    const std::lock_guard<QueuedMutex> lock(m_mutex);
    m_connection.exec(FewRows);
    m_connection.exec("ANALYZE");
}

void Database::Migrate(const QString& path, const Migrations& migrations, bool keepsCopy)
{
    const int known = static_cast<int>(migrations.size());
    const int found = m_connection.execAndGet("PRAGMA user_version").getInt();
    if (found > known)
        throw NewerSchema("the data folder was written by a newer version of this program");
    if (keepsCopy && found > 0 && found < known)
        BackUp(m_connection, CopyName(path, found));
    for (int version = found; version < known; ++version) {
        Write([&migrations, version](SQLite::Database& connection) {
            connection.exec(migrations.at(static_cast<std::size_t>(version)));
            connection.exec("PRAGMA user_version = " + std::to_string(version + 1));
        });
    }
}

QString Text(const SQLite::Column& column)
{
    return QString::fromStdString(column.getString());
}

} // namespace storage
