#include "host/rendercore/download/removed_files.h"

#include <QHash>
#include <QStringList>

namespace RemovedFiles {

namespace {

constexpr QChar Separator(u'\0');

} // namespace

// One compressed list per job takes a few bytes per file; a row per file would take a hundred.
const char* const Schema = R"sql(
CREATE TABLE removed_files(
    owner TEXT NOT NULL,
    job TEXT NOT NULL,
    names BLOB NOT NULL,
    PRIMARY KEY(owner, job)) WITHOUT ROWID;
)sql";

QSet<QString> Of(SQLite::Database& connection, const QString& owner, const QString& job)
{
    SQLite::Statement select(connection, "SELECT names FROM removed_files WHERE owner = ? AND job = ?");
    storage::Bind(select, owner, job);
    if (!select.executeStep())
        return {};
    const QByteArray packed = QByteArray::fromStdString(select.getColumn(0).getString());
    const QByteArray text = qUncompress(packed);
    const QStringList names = QString::fromUtf8(text.constData(), text.size()).split(Separator);
    return {names.cbegin(), names.cend()};
}

void Add(SQLite::Database& connection, const QString& owner, const DownloadTasks& tasks)
{
    QHash<QString, QSet<QString>> jobs;
    for (const DownloadTask& task : tasks)
        jobs[task.job].insert(task.name);
    for (auto job = jobs.cbegin(); job != jobs.cend(); ++job) {
        const QSet<QString> names = Of(connection, owner, job.key()) + job.value();
        QStringList sorted = names.values();
        sorted.sort();
        const QByteArray packed = qCompress(sorted.join(Separator).toUtf8());
        SQLite::Statement insert(
            connection, "INSERT OR REPLACE INTO removed_files(owner, job, names) VALUES (?, ?, ?)");
        storage::Bind(insert, owner, job.key());
        insert.bind(3, packed.constData(), packed.size());
        insert.exec();
    }
}

void Forget(SQLite::Database& connection, const QString& owner, const QString& job)
{
    storage::Execute(connection, "DELETE FROM removed_files WHERE owner = ? AND job = ?", owner, job);
}

} // namespace RemovedFiles
