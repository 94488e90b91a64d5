#pragma once

#include "farm/base/schema.h"

#include <QString>

namespace farm {

/// Tells whether a database and a data folder belong together: both hold the farm's id and a number that grows while the
/// farm runs. A farm with an older database would take newer files for strays and remove them.
class DataMark
{
public:
    /// Throws std::runtime_error, which says what to do, when the folder holds files of a farm but no database. Call it
    /// before a database is created.
    static void RequireDatabase(const QString& folder, const QString& database);

    /// Throws std::runtime_error, which says what to do, when the database is another farm's or older than the folder.
    /// @param acceptsAny uses such a database all the same.
    DataMark(Database& database, const QString& folder, bool acceptsAny);

    /// Notes that the folder may hold files that a copy of the database made before does not know. Thread-safe.
    void Advance();

private:
    struct Mark
    {
        QString farm;
        std::int64_t number = 0;
    };

    Mark InDatabase();
    Mark InFolder() const;
    void Write(const Mark& mark);

    Database& m_database;
    QString m_path;
};

} // namespace farm
