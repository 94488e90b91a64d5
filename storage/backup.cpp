#include "storage/backup.h"

#include "storage/durable_file.h"

#include <QFile>
#include <SQLiteCpp/Backup.h>

namespace storage {

namespace {

constexpr int AllPages = -1;

} // namespace

void BackUp(SQLite::Database& source, const QString& file)
{
    const QString unfinished = file + QStringLiteral(".part");
    QFile::remove(unfinished);
    {
        SQLite::Database copy(unfinished.toStdString(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
        SQLite::Backup(copy, source).executeStep(AllPages);
    }
    RenameDurably(unfinished, file);
}

} // namespace storage
