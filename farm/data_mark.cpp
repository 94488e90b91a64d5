#include "farm/data_mark.h"

#include "farm/base/random.h"
#include "storage/durable_file.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>

#include <algorithm>
#include <stdexcept>

namespace farm {

namespace {

constexpr int BusyTimeout = 5000; // ms

QString PathOf(const QString& folder)
{
    return QDir(folder).filePath(QStringLiteral("data.mark"));
}

bool HoldsFiles(const QString& folder)
{
    return QDirIterator(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories).hasNext();
}

} // namespace

void DataMark::RequireDatabase(const QString& folder, const QString& database, bool acceptsAny)
{
    if (QFile::exists(database)) {
        if (!acceptsAny)
            RequireMatch(PathOf(folder), database);
        return;
    }
    for (const char* part : {"jobs", "contents", "uploads"}) {
        if (HoldsFiles(QDir(folder).filePath(QLatin1String(part))))
            throw std::runtime_error(folder.toStdString()
                + " holds the files of a farm, but its database farm.sqlite is missing. Put the database "
                  "back, for "
                  "example from a backup; or, to begin an empty farm, move the folders jobs, contents and "
                  "uploads "
                  "and the file data.mark away. Nothing was changed.");
    }
}

void DataMark::RequireMatch(const QString& path, const QString& database)
{
    SQLite::Database connection(database.toStdString(), SQLite::OPEN_READONLY, BusyTimeout);
    const Mark known = In(connection);
    const Mark found = In(path);
    // A folder without a mark was made for the database, for example from a backup.
    if (found.farm.isEmpty() || (known.farm == found.farm && known.number >= found.number))
        return;
    throw std::runtime_error(path.toStdString()
        + (known.farm == found.farm
                ? ": the database farm.sqlite is older than the other files in the folder, "
                : ": the database farm.sqlite is not that of the other files in the folder, ")
        + "some of which it does not know. Put the right database back. To go on with this one, start "
          "once with "
          "--accept-database: scenes that it does not know are then removed. Nothing was changed.");
}

DataMark::DataMark(Database& database, const QString& folder)
    : m_database(database)
    , m_path(PathOf(folder))
{
    Mark known = InDatabase();
    const Mark found = In(m_path);
    if (known.farm.isEmpty())
        known.farm = found.farm.isEmpty() ? NewId() : found.farm;
    Write({known.farm, std::max(known.number, found.number) + 1});
}

void DataMark::Advance()
{
    const Mark mark = InDatabase();
    Write({mark.farm, mark.number + 1});
}

DataMark::Mark DataMark::InDatabase()
{
    return m_database.Read([](SQLite::Database& connection) { return In(connection); });
}

DataMark::Mark DataMark::In(SQLite::Database& connection)
{
    if (!connection.tableExists("data_mark"))
        return {};
    SQLite::Statement query(connection, "SELECT farm, number FROM data_mark");
    if (!query.executeStep())
        return {};
    return {Text(query.getColumn(0)), query.getColumn(1).getInt64()};
}

DataMark::Mark DataMark::In(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QList<QByteArray> words = file.readAll().simplified().split(' ');
    return {QString::fromLatin1(words.at(0)), words.value(1).toLongLong()};
}

// The database is written first: after a crash in between it is the newer of the two, which is accepted.
void DataMark::Write(const Mark& mark)
{
    m_database.Write([&mark](SQLite::Database& connection) {
        connection.exec("DELETE FROM data_mark");
        Execute(connection, "INSERT INTO data_mark(farm, number) VALUES (?, ?)", mark.farm, mark.number);
    });
    const QString unfinished = m_path + QStringLiteral(".new");
    QFile::remove(unfinished);
    storage::AppendDurably(
        unfinished, 0, mark.farm.toLatin1() + ' ' + QByteArray::number(qint64(mark.number)) + '\n');
    storage::RenameDurably(unfinished, m_path);
}

} // namespace farm
