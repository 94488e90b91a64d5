#include "farm/uploads/content_store.h"

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

// A content that is already here is overwritten with the same bytes, which repairs a copy that the disk has damaged.
void ContentStore::Take(const std::vector<UnpackedFile>& files)
{
    QMap<QString, QString> moves;
    bool hasNewFolder = false;
    for (const UnpackedFile& file : files) {
        const QString target = FileOf(file.checksum);
        const QString folder = QFileInfo(target).path();
        if (!QFileInfo::exists(folder)) {
            MakeFolder(folder);
            hasNewFolder = true;
        }
        moves.insert(target, file.file);
    }
    storage::RenameAllDurably(moves);
    if (hasNewFolder)
        storage::SyncToDisk(m_folder);
}

void ContentStore::Give(std::int64_t account, const std::vector<UnpackedFile>& files)
{
    m_database.Write([&](SQLite::Database& connection) {
        for (const UnpackedFile& file : files)
            Execute(connection, "INSERT OR IGNORE INTO contents(account, checksum, size) VALUES (?, ?, ?)",
                account, file.checksum, std::int64_t(file.size));
    });
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
    if (ShareFile(content, target, mayLink, goesOn) == checksum)
        return;
    // Once the damaged file is gone, the content counts as unknown and the client sends it again.
    if (storage::FileChecksum(content) != checksum)
        QFile::remove(content);
    throw std::runtime_error("a file of the scene is damaged");
}

} // namespace farm
