#include "farm/uploads/upload_store.h"

#include "farm/accounts/account_names.h"
#include "farm/accounts/audit.h"
#include "farm/base/errors.h"
#include "farm/base/random.h"
#include "farm/uploads/content_store.h"
#include "storage/checksum.h"
#include "storage/durable_file.h"
#include "storage/folder_check.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstring>
#include <optional>

namespace farm {

namespace {

constexpr std::int64_t SecondsKept = std::int64_t {7} * 24 * 3600; // seconds since the last request for it
// More than a client takes from its first package to the submission, or to its next query for known contents.
constexpr std::int64_t SecondsOfSubmission = std::int64_t {24} * 3600;
// A scene has up to 4000 files, each of which may arrive in its own package.
constexpr int MostUnfinished = 10000;

QuotaExceeded OverQuota()
{
    return QuotaExceeded("this would exceed the account's quota");
}

QStringList PathsOf(const std::vector<UnpackedFile>& files)
{
    QStringList paths;
    for (const UnpackedFile& file : files)
        paths.append(file.file);
    return paths;
}

/// Removes a folder and everything in it at the end of the scope.
class FolderGuard
{
public:
    explicit FolderGuard(const QString& folder)
        : m_folder(folder)
    {
    }
    ~FolderGuard() { m_folder.removeRecursively(); }
    FolderGuard(const FolderGuard&) = delete;
    FolderGuard& operator=(const FolderGuard&) = delete;

private:
    QDir m_folder;
};

// The database keeps the list of an upload's files as JSON.
QString TextOf(const std::vector<PackedFile>& files)
{
    QJsonArray list;
    for (const PackedFile& file : files)
        list.append(QJsonObject {{QStringLiteral("path"), file.path}, {QStringLiteral("size"), file.size},
            {QStringLiteral("checksum"), file.checksum}});
    return QString::fromUtf8(QJsonDocument(list).toJson(QJsonDocument::Compact));
}

std::vector<PackedFile> FilesOf(const QString& text)
{
    std::vector<PackedFile> files;
    const QJsonArray list = QJsonDocument::fromJson(text.toUtf8()).array();
    for (const QJsonValue& file : list)
        files.push_back({file[QLatin1String("path")].toString(),
            qint64(file[QLatin1String("size")].toDouble()), file[QLatin1String("checksum")].toString()});
    return files;
}

} // namespace

UploadStore::UploadStore(Database& database, ContentStore& contents, const QString& folder,
    const AccountTerms& terms, DiskReserve reserve)
    : m_database(database)
    , m_contents(contents)
    , m_folder(folder)
    , m_terms(terms)
    , m_reserve(std::move(reserve))
{
    if (!QDir().mkpath(folder))
        throw std::runtime_error("cannot create the folder of the uploads, " + folder.toStdString() + ": "
            + std::strerror(storage::FolderError(folder)));
    storage::SyncToDisk(QFileInfo(folder).path());
    RemoveStrayFiles();
}

QString UploadStore::FileOf(const QString& id) const
{
    return QDir(m_folder).filePath(id);
}

Upload UploadStore::Find(std::int64_t account, const QString& id)
{
    Upload upload = m_database.Read([&](SQLite::Database& connection) {
        SQLite::Statement query(
            connection, "SELECT checksum, size, unpacked FROM uploads WHERE account = ? AND id = ?");
        Bind(query, account, id);
        if (!query.executeStep())
            throw NotFound("there is no such upload");
        Upload found;
        found.id = id;
        found.checksum = Text(query.getColumn(0));
        found.size = query.getColumn(1).getInt64();
        found.unpacked = !query.isColumnNull(2);
        if (found.unpacked)
            found.files = FilesOf(Text(query.getColumn(2)));
        return found;
    });
    upload.offset = upload.unpacked ? upload.size : std::int64_t(QFileInfo(FileOf(id)).size());
    return upload;
}

Upload UploadStore::Begin(std::int64_t account, const QString& checksum, std::int64_t size, std::int64_t now)
{
    if (size > LargestPackage)
        throw TooLarge("a package may not be larger than 8 GiB");
    const std::lock_guard<std::mutex> lock(m_quotaMutex);
    const auto known = m_database.Read([&](SQLite::Database& connection) -> std::optional<QString> {
        SQLite::Statement query(
            connection, "SELECT id FROM uploads WHERE account = ? AND checksum = ? AND size = ?");
        Bind(query, account, checksum, size);
        if (!query.executeStep())
            return std::nullopt;
        return Text(query.getColumn(0));
    });
    if (!known)
        return Add(account, checksum, size, now);
    const Upload upload = Find(account, *known);
    if (HasLostContents(account, upload)) {
        Forget(*known);
        return Add(account, checksum, size, now);
    }
    Touch(*known, now);
    return upload;
}

// Contents that were unpacked earlier may have been lost or damaged since; the package is then needed again.
bool UploadStore::HasLostContents(std::int64_t account, const Upload& upload)
{
    QStringList checksums;
    for (const PackedFile& file : upload.files)
        checksums.append(file.checksum);
    return m_contents.KnownTo(account, checksums).size() < checksums.size();
}

Upload UploadStore::Add(std::int64_t account, const QString& checksum, std::int64_t size, std::int64_t now)
{
    m_reserve.Require(size);
    RequireQuota(
        account, [&] { return m_contents.BytesWith(account, {}) + size; }, now);
    CheckCount(account);
    Upload upload;
    upload.id = NewId();
    upload.checksum = checksum;
    upload.size = size;
    m_database.Write([&](SQLite::Database& connection) {
        Execute(connection,
            "INSERT INTO uploads(id, account, checksum, size, touched_at) VALUES (?, ?, ?, ?, ?)", upload.id,
            account, checksum, size, now);
    });
    return upload;
}

void UploadStore::CheckCount(std::int64_t account)
{
    m_database.Read([account](SQLite::Database& connection) {
        SQLite::Statement query(
            connection, "SELECT count(*) FROM uploads WHERE account = ? AND unpacked IS NULL");
        Bind(query, account);
        query.executeStep();
        if (query.getColumn(0).getInt() >= MostUnfinished)
            throw OverQuota();
    });
}

std::int64_t UploadStore::QuotaOf(std::int64_t account)
{
    return m_database.Read(
        [&](SQLite::Database& connection) { return m_terms.QuotaFor(connection, account); });
}

void UploadStore::RequireQuota(
    std::int64_t account, const std::function<std::int64_t()>& more, std::int64_t now)
{
    if (IsWithinQuota(account, more()))
        return;
    // A submission that is on its way may still be about to use its contents.
    m_contents.ForgetUnneededOf(account, now - SecondsOfSubmission);
    if (!IsWithinQuota(account, more()))
        throw OverQuota();
}

// Adds `more` to the bytes of the account's unfinished uploads.
bool UploadStore::IsWithinQuota(std::int64_t account, std::int64_t more)
{
    return m_database.Read([&](SQLite::Database& connection) {
        SQLite::Statement query(
            connection, "SELECT coalesce(sum(size), 0) FROM uploads WHERE account = ? AND unpacked IS NULL");
        Bind(query, account);
        query.executeStep();
        return query.getColumn(0).getInt64() + more <= m_terms.QuotaFor(connection, account);
    });
}

Upload UploadStore::Append(
    std::int64_t account, const QString& id, std::int64_t offset, const QByteArray& bytes, std::int64_t now)
{
    const UploadLocks::Hold hold(m_locks, id);
    Upload upload = Find(account, id);
    if (offset != upload.offset)
        throw Conflict("the upload does not end at this offset");
    if (bytes.size() > upload.size - offset)
        throw InvalidInput("the package would become larger than announced");
    if (bytes.isEmpty())
        return upload;
    m_reserve.Require(bytes.size());
    storage::AppendDurably(FileOf(id), offset, bytes);
    Touch(id, now);
    upload.offset += bytes.size();
    return upload;
}

Upload UploadStore::Unpack(std::int64_t account, const QString& id, std::int64_t now)
{
    const UploadLocks::Hold hold(m_locks, id);
    // One package per account is unpacked at a time; two together could exceed the quota.
    const UploadLocks::Hold turn(m_locks, QStringLiteral("account %1").arg(account));
    Upload upload = Find(account, id);
    if (upload.unpacked)
        return upload;
    if (upload.offset < upload.size)
        throw Conflict("the package is not complete");
    Touch(id, now);
    const QString incoming = m_contents.NewIncomingFolder();
    const FolderGuard guard(incoming);
    try {
        TakeContents(account, upload, incoming, now);
    } catch (const BadPackage&) {
        Forget(id);
        throw;
    }
    QFile::remove(FileOf(id));
    return upload;
}

void UploadStore::TakeContents(
    std::int64_t account, Upload& upload, const QString& incoming, std::int64_t now)
{
    const auto goOn = [this] { return !m_interrupted.load(); };
    const QString package = FileOf(upload.id);
    const QString checksum = storage::FileChecksum(package, [&goOn](qint64) { return goOn(); });
    if (checksum.isEmpty())
        throw Interrupted();
    if (checksum != upload.checksum)
        throw BadPackage("the package does not have the announced checksum");
    // The unpacked files must not exceed the quota, even temporarily.
    const qint64 announced = AnnouncedBytes(package);
    if (announced > QuotaOf(account))
        throw OverQuota();
    m_reserve.Require(announced);
    const std::vector<UnpackedFile> files = farm::Unpack(package, incoming, goOn);
    // Gigabytes may have to be written to the disk, and other accounts must not wait for that.
    storage::SyncAllToDisk(PathsOf(files));
    const std::lock_guard<std::mutex> lock(m_quotaMutex);
    // The package is not counted, since it is about to be deleted.
    RequireQuota(
        account, [&] { return m_contents.BytesWith(account, files) - upload.size; }, now);
    const auto taken = m_contents.Take(files);
    upload.files.assign(files.begin(), files.end());
    upload.unpacked = true;
    m_database.Write([&](SQLite::Database& connection) {
        m_contents.Give(account, files, now);
        Execute(
            connection, "UPDATE uploads SET unpacked = ?2 WHERE id = ?1", upload.id, TextOf(upload.files));
    });
}

void UploadStore::Touch(const QString& id, std::int64_t now)
{
    m_database.Write([&](SQLite::Database& connection) {
        Execute(connection, "UPDATE uploads SET touched_at = ?2 WHERE id = ?1", id, now);
    });
}

void UploadStore::Forget(const QString& id)
{
    m_database.Write(
        [&id](SQLite::Database& connection) { Execute(connection, "DELETE FROM uploads WHERE id = ?", id); });
    QFile::remove(FileOf(id));
}

void UploadStore::Remove(std::int64_t account, const QString& id, std::int64_t now, const QString& address)
{
    const UploadLocks::Hold hold(m_locks, id);
    const Upload upload = Find(account, id);
    m_database.Write([&](SQLite::Database& connection) {
        const QString name = AccountName(connection, account);
        RecordChange(connection, now, {name, address}, QStringLiteral("upload delete"), name,
            QStringLiteral("%1 bytes").arg(upload.size));
    });
    Forget(id);
}

void UploadStore::ForgetOld(std::int64_t now)
{
    const std::int64_t bound = now - SecondsKept;
    const QStringList old = m_database.Read([bound](SQLite::Database& connection) {
        SQLite::Statement query(connection, "SELECT id FROM uploads WHERE touched_at <= ?");
        Bind(query, bound);
        QStringList ids;
        while (query.executeStep())
            ids.append(Text(query.getColumn(0)));
        return ids;
    });
    for (const QString& id : old)
        ForgetWhenOld(id, bound);
}

void UploadStore::ForgetWhenOld(const QString& id, std::int64_t bound)
{
    try {
        const UploadLocks::Hold hold(m_locks, id);
        const bool isGone = m_database.Write([&](SQLite::Database& connection) {
            return Execute(connection, "DELETE FROM uploads WHERE id = ? AND touched_at <= ?", id, bound)
                != 0;
        });
        if (isGone)
            QFile::remove(FileOf(id));
    } catch (const Busy&) {
        // An upload that a request is working on is not old.
    }
}

void UploadStore::RemoveStrayFiles()
{
    QStringList stray = QDir(m_folder).entryList(QDir::Files | QDir::Hidden);
    m_database.Read([&stray](SQLite::Database& connection) {
        SQLite::Statement query(connection, "SELECT id FROM uploads WHERE unpacked IS NULL");
        while (query.executeStep())
            stray.removeOne(Text(query.getColumn(0)));
    });
    for (const QString& id : qAsConst(stray))
        QFile::remove(FileOf(id));
}

} // namespace farm
