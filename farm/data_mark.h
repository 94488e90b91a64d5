#pragma once

#include "farm/base/schema.h"

#include <QString>

namespace farm {

/// Tells whether a database and a data folder belong together: both hold the farm's id and a number that grows while
/// the farm runs. With an older database, a farm would take newer files for unknown ones and remove them.
class DataMark
{
public:
    /// Throws std::runtime_error, which says what to do, when the folder holds files of a farm but no database, or when the
    /// database is another farm's or older than the folder. Changes nothing. Call it before the database is opened, which
    /// creates it or brings its tables up to date.
    /// @param acceptsAny uses a database that is another farm's or older all the same.
    static void RequireDatabase(const QString& folder, const QString& database, bool acceptsAny);

    DataMark(Database& database, const QString& folder);

    /// Records that the folder may now hold files that earlier copies of the database do not know. Thread-safe.
    void Advance();

private:
    struct Mark
    {
        QString farm;
        std::int64_t number = 0;
    };

    static Mark In(SQLite::Database& connection);
    static Mark In(const QString& path);
    static void RequireMatch(const QString& path, const QString& database);
    Mark InDatabase();
    void Write(const Mark& mark);

    Database& m_database;
    QString m_path;
};

} // namespace farm
