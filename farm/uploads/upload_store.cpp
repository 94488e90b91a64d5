#include "farm/uploads/upload_store.h"

#include "farm/accounts/secrets.h"
#include "farm/http/http_refusal.h"
#include "farm/uploads/content_store.h"
#include "storage/durable_file.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace farm {

namespace {

constexpr std::int64_t SecondsKept = std::int64_t {7} * 24 * 3600;
// Scenes have up to 4000 files, each of which may come in a package of its own.
constexpr int MostUnfinished = 10000;

ApiRefusal NoSuchUpload()
{
    return {404, "not_found", QStringLiteral("there is no such upload")};
}

ApiRefusal Conflict(const QString& message)
{
    return {409, "conflict", message};
}

ApiRefusal QuotaExceeded()
{
    return {507, "quota_exceeded", QStringLiteral("the account's quota would be exceeded")};
}

/// Removes a folder with all that is in it when it goes.
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

QJsonArray FilesJson(const std::vector<UnpackedFile>& files)
{
    QJsonArray list;
    for (const UnpackedFile& file : files) {
        list.append(QJsonObject {{QStringLiteral("path"), file.path}, {QStringLiteral("size"), file.size},
            {QStringLiteral("checksum"), file.checksum}});
    }
    return list;
}

bool WriteAt(int file, std::int64_t offset, const QByteArray& bytes)
{
    int written = 0;
    while (written < bytes.size()) {
        const ssize_t count = ::pwrite(file, bytes.constData() + written,
            static_cast<std::size_t>(bytes.size() - written), off_t(offset + written));
        if (count <= 0)
            return false;
        written += static_cast<int>(count);
    }
    return ::fsync(file) == 0;
}

// What does not get to the disk whole is taken back.
void AppendDurably(const QString& path, std::int64_t offset, const QByteArray& bytes)
{
    const int file
        = ::open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    const bool done = file >= 0 && WriteAt(file, offset, bytes);
    if (file >= 0 && !done && ::ftruncate(file, off_t(offset)) != 0)
        QFile::remove(path);
    if (file >= 0)
        ::close(file);
    if (!done)
        throw std::runtime_error("cannot write an upload");
    if (offset == 0)
        storage::SyncToDisk(QFileInfo(path).path());
}

} // namespace

UploadStore::UploadStore(
    Database& database, ContentStore& contents, const QString& folder, std::int64_t quota)
    : m_database(database)
    , m_contents(contents)
    , m_folder(folder)
    , m_quota(quota)
{
    if (!QDir().mkpath(folder))
        throw std::runtime_error("cannot make the folder of the uploads");
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
            throw NoSuchUpload();
        Upload found;
        found.id = id;
        found.checksum = Text(query.getColumn(0));
        found.size = query.getColumn(1).getInt64();
        found.unpacked = !query.isColumnNull(2);
        if (found.unpacked)
            found.files = QJsonDocument::fromJson(Text(query.getColumn(2)).toUtf8()).array();
        return found;
    });
    upload.offset = upload.unpacked ? upload.size : std::int64_t(QFileInfo(FileOf(id)).size());
    return upload;
}

Upload UploadStore::Begin(std::int64_t account, const QString& checksum, std::int64_t size, std::int64_t now)
{
    if (size > LargestPackage)
        throw ApiRefusal {413, "too_large", QStringLiteral("packages may not be that large")};
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

// What was unpacked once may have been lost or damaged since: then it is needed again.
bool UploadStore::HasLostContents(std::int64_t account, const Upload& upload)
{
    QStringList checksums;
    for (const QJsonValue& file : upload.files)
        checksums.append(file[QLatin1String("checksum")].toString());
    return m_contents.KnownTo(account, checksums).size() < checksums.size();
}

Upload UploadStore::Add(std::int64_t account, const QString& checksum, std::int64_t size, std::int64_t now)
{
    CheckQuota(account, m_contents.BytesWith(account, {}) + size);
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
            throw QuotaExceeded();
    });
}

// `more` is what counts besides the uploads.
void UploadStore::CheckQuota(std::int64_t account, std::int64_t more)
{
    m_database.Read([&](SQLite::Database& connection) {
        SQLite::Statement query(
            connection, "SELECT coalesce(sum(size), 0) FROM uploads WHERE account = ? AND unpacked IS NULL");
        Bind(query, account);
        query.executeStep();
        if (query.getColumn(0).getInt64() + more > m_quota)
            throw QuotaExceeded();
    });
}

Upload UploadStore::Append(
    std::int64_t account, const QString& id, std::int64_t offset, const QByteArray& bytes, std::int64_t now)
{
    const UploadLocks::Hold hold(m_locks, id);
    Upload upload = Find(account, id);
    if (offset != upload.offset)
        throw Conflict(QStringLiteral("the upload has come to another offset"));
    if (bytes.size() > upload.size - offset)
        throw ApiRefusal {400, "bad_request", QStringLiteral("that is more than was announced")};
    if (bytes.isEmpty())
        return upload;
    AppendDurably(FileOf(id), offset, bytes);
    Touch(id, now);
    upload.offset += bytes.size();
    return upload;
}

Upload UploadStore::Unpack(std::int64_t account, const QString& id, std::int64_t now)
{
    const UploadLocks::Hold hold(m_locks, id);
    // One package at a time, so that what an account unpacks at once stays within its quota.
    const UploadLocks::Hold turn(m_locks, QStringLiteral("account %1").arg(account));
    Upload upload = Find(account, id);
    if (upload.unpacked)
        return upload;
    if (upload.offset < upload.size)
        throw Conflict(QStringLiteral("the package is not complete"));
    Touch(id, now);
    const QString incoming = m_contents.NewIncomingFolder();
    const FolderGuard guard(incoming);
    try {
        TakeContents(account, upload, incoming);
    } catch (const BadPackage& error) {
        Forget(id);
        throw ApiRefusal {422, "bad_package", QString::fromUtf8(error.what())};
    }
    QFile::remove(FileOf(id));
    return upload;
}

void UploadStore::TakeContents(std::int64_t account, Upload& upload, const QString& incoming)
{
    const auto goOn = [this] { return !m_interrupted.load(); };
    const QString package = FileOf(upload.id);
    const QString checksum = storage::FileChecksum(package, [&goOn](qint64) { return goOn(); });
    if (checksum.isEmpty())
        throw Interrupted();
    if (checksum != upload.checksum)
        throw BadPackage("the package is not what was announced");
    // More than the quota must not even get to the disk for a while.
    if (AnnouncedBytes(package) > m_quota)
        throw QuotaExceeded();
    const std::vector<UnpackedFile> files = farm::Unpack(package, incoming, goOn);
    const std::lock_guard<std::mutex> lock(m_quotaMutex);
    // The package itself goes.
    CheckQuota(account, m_contents.BytesWith(account, files) - upload.size);
    m_contents.Take(files);
    upload.files = FilesJson(files);
    upload.unpacked = true;
    m_database.Write([&](SQLite::Database& connection) {
        m_contents.Give(account, files);
        Execute(connection, "UPDATE uploads SET unpacked = ?2 WHERE id = ?1", upload.id,
            QString::fromUtf8(QJsonDocument(upload.files).toJson(QJsonDocument::Compact)));
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
    } catch (const ApiRefusal&) {
        // Somebody works at it: it is not old.
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
