#include "storage/recovering_database.h"

#include <QDate>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <sqlite3.h>

#include <cerrno>
#include <cstdio>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace storage {

namespace {

/// The companion files are moved first: a log left behind would be taken for that of the fresh database.
constexpr const char* Suffixes[] = {"-wal", "-shm", ""};

QByteArray Name(const QString& path, const char* suffix = "")
{
    return QFile::encodeName(path) + suffix;
}

/// Whether the path belongs to another user, or is not a file. A read-only disk does not count, since it may become
/// writable again.
bool IsNotOurs(const QString& path)
{
    struct stat found = {};
    if (::stat(Name(path).constData(), &found) != 0)
        return false;
    return !S_ISREG(found.st_mode) || (::access(Name(path).constData(), R_OK | W_OK) != 0 && errno == EACCES);
}

bool IsUnusable(const std::exception& failure, const QString& path)
{
    if (dynamic_cast<const NewerSchema*>(&failure))
        return true;
    const auto* error = dynamic_cast<const SQLite::Exception*>(&failure);
    switch (error ? error->getErrorCode() & 0xff : SQLITE_OK) {
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
        return true;
    case SQLITE_CANTOPEN:
    case SQLITE_READONLY:
    case SQLITE_PERM:
        return IsNotOurs(path);
    default:
        return false;
    }
}

/// "downloads.sqlite" becomes "downloads-unreadable-2026-11-22.sqlite", the next one of that day "…-22-2.sqlite".
QString FreeName(const QString& path)
{
    const QFileInfo file(path);
    const QString stem = file.path() + QLatin1Char('/') + file.completeBaseName()
        + QLatin1String("-unreadable-") + QDate::currentDate().toString(Qt::ISODate);
    const QString suffix = QLatin1Char('.') + file.suffix();
    QString name = stem + suffix;
    for (int number = 2; QFileInfo::exists(name); ++number)
        name = stem + QLatin1Char('-') + QString::number(number) + suffix;
    return name;
}

} // namespace

RecoveringDatabase::RecoveringDatabase(const QString& path, const Migrations& migrations, Replaced onReplaced)
    : m_path(path)
    , m_migrations(migrations)
    , m_onReplaced(std::move(onReplaced))
{
}

RecoveringDatabase::~RecoveringDatabase() = default;

Database& RecoveringDatabase::Opened()
{
    if (!m_database) {
        QDir().mkpath(QFileInfo(m_path).path());
        m_database = std::make_unique<Database>(m_path, m_migrations);
    }
    return *m_database;
}

bool RecoveringDatabase::SetAside(const std::exception& failure)
{
    if (!IsUnusable(failure, m_path))
        return false;
    const QString kept = FreeName(m_path);
    qWarning("%s is set aside as %s: %s", qUtf8Printable(m_path), qUtf8Printable(kept), failure.what());
    m_database.reset();
    for (const char* suffix : Suffixes) {
        const bool isRenamed
            = std::rename(Name(m_path, suffix).constData(), Name(kept, suffix).constData()) == 0;
        if (!isRenamed && errno != ENOENT)
            return false;
    }
    if (m_onReplaced)
        m_onReplaced(kept);
    return true;
}

} // namespace storage
