#include "storage/database.h"

#include <string>
#include <utility>

namespace storage {

namespace {

constexpr int BusyTimeout = 5000; // ms

} // namespace

Database::Database(const QString& path, const Migrations& migrations)
    : m_connection(path.toStdString(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE, BusyTimeout)
{
    m_connection.exec("PRAGMA journal_mode = WAL");
    m_connection.exec("PRAGMA synchronous = FULL");
    m_connection.exec("PRAGMA foreign_keys = ON");
    Migrate(migrations);
}

bool Database::WasChangedByOthers()
{
    const std::lock_guard<std::recursive_mutex> lock(m_mutex);
    const std::int64_t version = m_connection.execAndGet("PRAGMA data_version").getInt64();
    return std::exchange(m_dataVersion, version) != version;
}

void Database::Migrate(const Migrations& migrations)
{
    const int known = static_cast<int>(migrations.size());
    const int found = m_connection.execAndGet("PRAGMA user_version").getInt();
    if (found > known)
        throw NewerSchema("the data folder was written by a newer version of this program");
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
