#include "farm/rendering/log_store.h"

#include "farm/base/errors.h"
#include "farm/base/plain_file.h"
#include "farm/rendering/frame_files.h"

#include <QDir>
#include <QTemporaryFile>

#include <optional>

namespace farm {

LogStore::LogStore(Database& database, const FrameFiles& files)
    : m_database(database)
    , m_files(files)
{
}

std::shared_ptr<QFile> LogStore::Open(const QString& job, int frame)
{
    const auto run = m_database.Read([&job](SQLite::Database& connection) {
        SQLite::Statement query(connection, "SELECT run FROM jobs WHERE id = ?");
        Bind(query, job);
        return query.executeStep() ? std::optional(query.getColumn(0).getInt()) : std::nullopt;
    });
    if (!run)
        throw NotFound("there is no such job");
    // A restarted job still has the files of its earlier run.
    const int begun = m_files.BegunRun(job);
    if (begun > 0 && begun < *run)
        return nullptr;
    const QString path
        = QDir(m_files.JobFolder(job))
              .filePath(QStringLiteral("logs/") + FrameFiles::FrameName(frame, QStringLiteral("txt")));
    auto file = std::make_shared<QFile>();
    if (OpenPlainFile(*file, path))
        return file;
    return OpenEnd(job, frame);
}

/// The database keeps the end of each log.
std::shared_ptr<QFile> LogStore::OpenEnd(const QString& job, int frame)
{
    const QString end = m_database.Read([&](SQLite::Database& connection) {
        SQLite::Statement query(connection,
            "SELECT text FROM jobs JOIN frame_logs ON frame_logs.job = jobs.key WHERE id = ? AND frame = ?");
        Bind(query, job, frame);
        return query.executeStep() ? Text(query.getColumn(0)) : QString();
    });
    auto file = std::make_shared<QTemporaryFile>();
    if (end.isEmpty() || !file->open() || file->write(end.toUtf8()) < 0 || !file->flush())
        return nullptr;
    return file;
}

std::shared_ptr<QFile> LogStore::OpenOwn(std::int64_t account, const QString& job, int frame)
{
    const bool isOwn = m_database.Read([&](SQLite::Database& connection) {
        SQLite::Statement query(connection, "SELECT 1 FROM jobs WHERE id = ? AND +account = ?");
        Bind(query, job, account);
        return query.executeStep();
    });
    if (!isOwn)
        throw NotFound("there is no such job");
    return Open(job, frame);
}

} // namespace farm
