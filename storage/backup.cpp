#include "storage/backup.h"

#include "storage/durable_file.h"

#include <QFile>
#include <QFileInfo>
#include <QStringList>
#include <SQLiteCpp/Backup.h>

#include <stdexcept>

namespace storage {

namespace {

constexpr int AllPages = -1;

} // namespace

void BackUp(SQLite::Database& source, const QString& file)
{
    const QString own = QFileInfo(QString::fromStdString(source.getFilename())).canonicalFilePath();
    const QString target = QFileInfo(file).canonicalFilePath();
    if (!target.isEmpty()
        && QStringList {own, own + QLatin1String("-wal"), own + QLatin1String("-shm")}.contains(target))
        throw std::runtime_error("a copy cannot replace the database itself");
    const QString unfinished = file + QStringLiteral(".part");
    QFile::remove(unfinished);
    {
        SQLite::Database copy(unfinished.toStdString(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
        SQLite::Backup(copy, source).executeStep(AllPages);
    }
    RenameDurably(unfinished, file);
}

} // namespace storage
