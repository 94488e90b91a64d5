#include "farm/uploads/content_store.h"

#include "farm/accounts/account_names.h"
#include "farm/accounts/audit.h"
#include "farm/base/errors.h"
#include "farm/base/random.h"
#include "storage/checksum.h"
#include "storage/disk_full.h"
#include "storage/durable_file.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QSet>

namespace farm {

namespace {

// Contents are spread over folders that are named after the first digits of their checksums.
constexpr int PrefixDigits = 2;

QString Incoming()
{
    return QStringLiteral("incoming");
}

// Contents handled in one transaction, during which nobody else can write to the database.
constexpr int Batch = 200;

void MakeFolder(const QString& path)
{
    if (!QDir().mkpath(path))
        storage::ThrowWriteError("cannot create a folder for file contents", QFileInfo(path).path(), 0);
}

} // namespace

ContentStore::ContentStore(Database& database, const QString& folder)
    : m_database(database)
    , m_folder(folder)
{
    QDir(QDir(folder).filePath(Incoming())).removeRecursively();
    MakeFolder(folder);
    storage::SyncToDisk(QFileInfo(folder).path());
    RemoveStrayFiles();
}

// A farm that crashes between Take() and Give() leaves files that belong to no account.
void ContentStore::RemoveStrayFiles()
{
    const QSet<QString> known = m_database.Read([](SQLite::Database& connection) {
        SQLite::Statement query(connection, "SELECT DISTINCT checksum FROM contents");
        QSet<QString> checksums;
        while (query.executeStep())
            checksums.insert(Text(query.getColumn(0)));
        return checksums;
    });
    QDirIterator files(m_folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString file = files.next();
        if (!known.contains(QFileInfo(file).fileName()))
            QFile::remove(file);
    }
}

QString ContentStore::FileOf(const QString& checksum) const
{
    return QDir(m_folder).filePath(checksum.left(PrefixDigits) + QLatin1Char('/') + checksum);
}

QString ContentStore::NewIncomingFolder()
{
    const QString folder = QDir(m_folder).filePath(Incoming() + QLatin1Char('/') + NewId());
    MakeFolder(folder);
    return folder;
}

// An existing content is overwritten with the same bytes, which repairs a copy that the disk has damaged.
std::unique_ptr<ContentStore::Taken> ContentStore::Take(const std::vector<UnpackedFile>& files)
{
    QMap<QString, QString> moves;
    QStringList checksums;
    bool hasNewFolder = false;
    for (const UnpackedFile& file : files) {
        checksums.append(file.checksum);
        const QString target = FileOf(file.checksum);
        const QString folder = QFileInfo(target).path();
        if (!QFileInfo::exists(folder)) {
            MakeFolder(folder);
            hasNewFolder = true;
        }
        moves.insert(target, file.file);
    }
    auto taken = std::make_unique<Taken>(*this, checksums);
    const std::lock_guard<std::mutex> lock(m_filesMutex);
    storage::RenameAllDurably(moves);
    if (hasNewFolder)
        storage::SyncToDisk(m_folder);
    return taken;
}

ContentStore::Taken::Taken(ContentStore& store, QStringList checksums)
    : m_store(store)
    , m_checksums(std::move(checksums))
{
    const std::lock_guard<std::mutex> lock(m_store.m_filesMutex);
    for (const QString& checksum : qAsConst(m_checksums))
        ++m_store.m_taken[checksum];
}

ContentStore::Taken::~Taken()
{
    const std::lock_guard<std::mutex> lock(m_store.m_filesMutex);
    for (const QString& checksum : qAsConst(m_checksums)) {
        const auto taken = m_store.m_taken.find(checksum);
        if (--taken->second == 0)
            m_store.m_taken.erase(taken);
    }
}

void ContentStore::Give(std::int64_t account, const std::vector<UnpackedFile>& files, std::int64_t now)
{
    m_database.Write([&](SQLite::Database& connection) {
        for (const UnpackedFile& file : files)
            Execute(connection,
                "INSERT INTO contents(account, checksum, size, used_at) VALUES (?, ?, ?, ?) "
                "ON CONFLICT DO UPDATE SET used_at = excluded.used_at",
                account, file.checksum, std::int64_t(file.size), now);
    });
}

void ContentStore::Touch(std::int64_t account, const QStringList& checksums, std::int64_t now)
{
    constexpr std::int64_t Precision = 3600; // s; spares the disk most of the writes
    m_database.Write([&](SQLite::Database& connection) {
        for (const QString& checksum : checksums)
            Execute(connection,
                "UPDATE contents SET used_at = ?3 WHERE account = ?1 AND checksum = ?2 AND used_at < ?4",
                account, checksum, now, now - Precision);
    });
}

void ContentStore::ForgetUnneeded(
    std::int64_t usedBefore, std::int64_t now, const std::function<bool()>& goOn)
{
    const std::string old
        = " IN (SELECT account, checksum FROM contents INDEXED BY contents_by_use WHERE used_at <= ?1 "
          "ORDER BY used_at LIMIT "
        + std::to_string(Batch) + ")";
    bool areMore = true;
    while (areMore && goOn()) {
        const QStringList gone = m_database.Write([&](SQLite::Database& connection) {
            SQLite::Statement forget(connection,
                "DELETE FROM contents WHERE (account, checksum)" + old + " AND " + NoJobNeedsTheContent
                    + " RETURNING checksum");
            Bind(forget, usedBefore);
            QStringList checksums;
            while (forget.executeStep())
                checksums.append(Text(forget.getColumn(0)));
            const std::string keep = "UPDATE contents SET used_at = max(?2, ?1 + 1) WHERE (account, checksum)"
                + old + " AND NOT " + NoJobNeedsTheContent;
            areMore = Execute(connection, keep.c_str(), usedBefore, now) + checksums.size() > 0;
            return checksums;
        });
        RemoveFiles(gone);
    }
}

std::int64_t ContentStore::ForgetUnneededOf(std::int64_t account, std::int64_t usedBefore)
{
    return ForgetUnneededOf(account, usedBefore, [](SQLite::Database&, std::int64_t) {});
}

std::int64_t ContentStore::FreeUnneededOf(std::int64_t account, std::int64_t now, const QString& address)
{
    return ForgetUnneededOf(account, now, [&](SQLite::Database& connection, std::int64_t bytes) {
        const QString name = AccountName(connection, account);
        if (bytes > 0)
            RecordChange(connection, now, {name, address}, QStringLiteral("files free"), name,
                QStringLiteral("%1 bytes").arg(bytes));
    });
}

std::int64_t ContentStore::ForgetUnneededOf(
    std::int64_t account, std::int64_t usedBefore, const Record& record)
{
    QStringList gone;
    const std::int64_t bytes = m_database.Write([&](SQLite::Database& connection) {
        SQLite::Statement forget(connection,
            std::string("DELETE FROM contents WHERE account = ? AND used_at <= ? AND ") + NoJobNeedsTheContent
                + " RETURNING checksum, size");
        Bind(forget, account, usedBefore);
        std::int64_t freed = 0;
        while (forget.executeStep()) {
            gone.append(Text(forget.getColumn(0)));
            freed += forget.getColumn(1).getInt64();
        }
        record(connection, freed);
        return freed;
    });
    RemoveFiles(gone);
    return bytes;
}

/// Removes those of the files that no account has and that are not just arriving.
void ContentStore::RemoveFiles(const QStringList& checksums)
{
    for (const QString& checksum : checksums) {
        const std::lock_guard<std::mutex> lock(m_filesMutex);
        const bool isUsed = m_database.Read([&checksum](SQLite::Database& connection) {
            SQLite::Statement query(connection, "SELECT 1 FROM contents WHERE checksum = ?");
            Bind(query, checksum);
            return query.executeStep();
        });
        if (!isUsed && m_taken.count(checksum) == 0)
            QFile::remove(FileOf(checksum));
    }
}

QHash<QString, std::int64_t> ContentStore::SizesOf(std::int64_t account, const QStringList& checksums)
{
    auto sizes = m_database.Read([&](SQLite::Database& connection) {
        SQLite::Statement query(connection, "SELECT size FROM contents WHERE account = ? AND checksum = ?");
        QHash<QString, std::int64_t> found;
        for (const QString& checksum : checksums) {
            Bind(query, account, checksum);
            if (query.executeStep())
                found.insert(checksum, query.getColumn(0).getInt64());
            query.reset();
        }
        return found;
    });
    // A missing or truncated content counts as unknown, so that the client sends it again.
    for (auto size = sizes.begin(); size != sizes.end();)
        size = QFileInfo(FileOf(size.key())).size() == *size ? std::next(size) : sizes.erase(size);
    return sizes;
}

QStringList ContentStore::KnownTo(std::int64_t account, const QStringList& checksums)
{
    const QHash<QString, std::int64_t> sizes = SizesOf(account, checksums);
    QStringList known;
    for (const QString& checksum : checksums) {
        if (sizes.contains(checksum))
            known.append(checksum);
    }
    return known;
}

std::int64_t ContentStore::BytesWith(std::int64_t account, const std::vector<UnpackedFile>& files)
{
    return m_database.Read([&](SQLite::Database& connection) {
        SQLite::Statement used(connection, "SELECT coalesce(sum(size), 0) FROM contents WHERE account = ?");
        Bind(used, account);
        std::int64_t bytes = used.executeStep() ? used.getColumn(0).getInt64() : 0;
        SQLite::Statement query(connection, "SELECT 1 FROM contents WHERE account = ? AND checksum = ?");
        QSet<QString> counted;
        for (const UnpackedFile& file : files) {
            Bind(query, account, file.checksum);
            if (!counted.contains(file.checksum) && !query.executeStep())
                bytes += file.size;
            counted.insert(file.checksum);
            query.reset();
        }
        return bytes;
    });
}

void ContentStore::ProvideAs(
    const QString& target, const QString& checksum, bool mayLink, const GoesOn& goesOn) const
{
    const QString content = FileOf(checksum);
    if (!QFileInfo::exists(content) && QFileInfo::exists(m_folder))
        throw SceneError("a file of the scene is missing");
    if (ShareFile(content, target, mayLink, goesOn) == checksum)
        return;
    // Once the damaged file is gone, the content counts as unknown and the client sends it again.
    if (storage::FileChecksum(content) == checksum)
        throw storage::DiskError("the disk has damaged the copy of a file", EIO);
    QFile::remove(content);
    throw SceneError("a file of the scene is damaged");
}

} // namespace farm
