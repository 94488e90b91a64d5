#include "host/rendercore/submit/checksum_cache.h"

#include "host/rendercore/attempt.h"
#include "host/rendercore/submit/submit_schema.h"

#include <QDateTime>
#include <QFile>

#include <sys/stat.h>

namespace {

constexpr int MostEntries = 100000;
constexpr qint64 SecondInNanoseconds = 1000000000;
constexpr qint64 SettleTime = 2; // seconds, the coarsest clock of a file system

qint64 Nanoseconds(const timespec& time)
{
    return static_cast<qint64>(time.tv_sec) * SecondInNanoseconds + time.tv_nsec;
}

} // namespace

FileStamp FileStamp::Of(const QString& path)
{
    struct stat info
    {
    };
    FileStamp stamp;
    stamp.path = path;
    if (::stat(QFile::encodeName(path).constData(), &info) != 0)
        return stamp;
    stamp.size = info.st_size;
    stamp.modified = Nanoseconds(info.st_mtim);
    stamp.changed = Nanoseconds(info.st_ctim);
    return stamp;
}

ChecksumCache::ChecksumCache(const QString& database)
    : m_path(database)
{
}

ChecksumCache::~ChecksumCache() = default;

storage::Database* ChecksumCache::Open()
{
    if (!m_database && !m_path.isEmpty()) {
        Attempt("use the known checksums",
            [this] { m_database = std::make_unique<storage::Database>(m_path, SubmitSchema()); });
    }
    return m_database.get();
}

QString ChecksumCache::Find(const FileStamp& file)
{
    QString checksum;
    storage::Database* database = Open();
    if (!database || file.size < 0)
        return checksum;
    Attempt("look up a checksum", [&] {
        database->Read([&](SQLite::Database& connection) {
            SQLite::Statement row(connection,
                "SELECT checksum FROM checksums WHERE path = ? AND size = ? AND modified = ? AND changed = "
                "?");
            storage::Bind(row, file.path, file.size, file.modified, file.changed);
            if (row.executeStep())
                checksum = storage::Text(row.getColumn(0));
        });
    });
    return checksum;
}

void ChecksumCache::Record(const QVector<Entry>& entries)
{
    storage::Database* database = Open();
    if (!database || entries.isEmpty())
        return;
    const qint64 now = QDateTime::currentSecsSinceEpoch();
    Attempt("record checksums", [&] {
        database->Write([&](SQLite::Database& connection) {
            for (const Entry& entry : entries) {
                const FileStamp& file = entry.file;
                const bool isSettled = file.modified / SecondInNanoseconds + SettleTime <= now;
                if (isSettled)
                    storage::Execute(connection, "REPLACE INTO checksums VALUES(?, ?, ?, ?, ?, ?)", file.path,
                        file.size, file.modified, file.changed, entry.checksum, now);
                else
                    storage::Execute(connection, "DELETE FROM checksums WHERE path = ?", file.path);
            }
            storage::Execute(connection,
                "DELETE FROM checksums WHERE path IN "
                "(SELECT path FROM checksums ORDER BY used DESC LIMIT -1 OFFSET ?)",
                MostEntries);
        });
    });
}
