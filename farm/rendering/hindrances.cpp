#include "farm/rendering/hindrances.h"

#include <spdlog/spdlog.h>

namespace farm {

Hindrances::Hindrances(Database& database, ChangeFeed& feed)
    : m_database(database)
    , m_feed(feed)
{
    // Reasons from before the restart are determined anew.
    m_database.Write([](SQLite::Database& connection) { connection.exec("DELETE FROM hindered_types"); });
}

void Hindrances::Set(const QMap<QString, QString>& byType)
{
    if (byType == m_known)
        return;
    m_database.Write([&byType](SQLite::Database& connection) {
        connection.exec("DELETE FROM hindered_types");
        for (auto type = byType.cbegin(); type != byType.cend(); ++type)
            Execute(connection, "INSERT INTO hindered_types(type, message) VALUES (?, ?)", type.key(),
                QStringLiteral("The job waits: %1.").arg(type.value()));
    });
    for (auto type = byType.cbegin(); type != byType.cend(); ++type) {
        if (m_known.value(type.key()) != type.value())
            spdlog::warn("jobs of type {} wait: {}", type.key().toStdString(), type.value().toStdString());
    }
    for (auto type = m_known.cbegin(); type != m_known.cend(); ++type) {
        if (!byType.contains(type.key()))
            spdlog::info("jobs of type {} go on", type.key().toStdString());
    }
    m_known = byType;
    m_feed.AnnounceToAll({{}, true});
}

QStringList Hindrances::OpenTypes()
{
    return m_database.Read([](SQLite::Database& connection) {
        // There are few kept counts of the largest blocks. CROSS JOIN makes SQLite look them up account by account.
        SQLite::Statement query(connection,
            "SELECT DISTINCT type FROM accounts CROSS JOIN job_counts ON account = accounts.key AND shift = "
            "24 "
            "WHERE status IN (0, 1, 6)");
        QStringList types;
        while (query.executeStep())
            types.append(Text(query.getColumn(0)));
        return types;
    });
}

} // namespace farm
