#pragma once

#include "farm/base/schema.h"
#include "farm/uploads/upload_locks.h"

#include <QByteArray>
#include <QJsonArray>

#include <atomic>
#include <cstdint>
#include <mutex>

namespace farm {

class ContentStore;

/// A package on its way to the farm, or one whose contents have been taken in.
struct Upload
{
    QString id;
    QString checksum;
    /// Of the whole package, in bytes.
    std::int64_t size = 0;
    /// How much of it is on the disk, in bytes.
    std::int64_t offset = 0;
    bool unpacked = false;
    /// Once it is unpacked: path, size and checksum of each file.
    QJsonArray files;
};

/// The packages that come in chunks. May be used by several threads at a time; one at a time works at an upload.
/// What cannot be done is thrown as ApiRefusal. Times are seconds since the epoch.
class UploadStore
{
public:
    static constexpr std::int64_t LargestPackage = std::int64_t {8} * 1024 * 1024 * 1024;

    /// Makes the folder and removes the packages that nobody waits for. Throws std::runtime_error.
    /// @param quota is what the contents and unfinished uploads of an account may take, in bytes.
    UploadStore(Database& database, ContentStore& contents, const QString& folder, std::int64_t quota);

    /// The account's upload of this package, or a new one.
    Upload Begin(std::int64_t account, const QString& checksum, std::int64_t size, std::int64_t now);
    Upload Find(std::int64_t account, const QString& id);
    /// Adds bytes at the end, which must be at `offset`; they are on the disk when it returns.
    Upload Append(std::int64_t account, const QString& id, std::int64_t offset, const QByteArray& bytes,
        std::int64_t now);
    /// Verifies the package, takes its contents in and forgets it; asked again it gives the same answer.
    Upload Unpack(std::int64_t account, const QString& id, std::int64_t now);

    /// Forgets the uploads that nobody has touched for seven days.
    void ForgetOld(std::int64_t now);
    /// Gives up what is being unpacked, since the farm ends.
    void Interrupt() { m_interrupted = true; }

private:
    QString FileOf(const QString& id) const;
    Upload Require(std::int64_t account, const QString& id);
    void Touch(const QString& id, std::int64_t now);
    void Forget(const QString& id);
    void RemoveStrayFiles();
    void CheckCount(std::int64_t account);
    bool HasLostContents(std::int64_t account, const Upload& upload);
    void ForgetWhenOld(const QString& id, std::int64_t bound);
    void CheckQuota(std::int64_t account, std::int64_t more);
    Upload Add(std::int64_t account, const QString& checksum, std::int64_t size, std::int64_t now);
    void TakeContents(std::int64_t account, Upload& upload, const QString& incoming);

    Database& m_database;
    ContentStore& m_contents;
    QString m_folder;
    std::int64_t m_quota;
    UploadLocks m_locks;
    // What counts against a quota is looked at and added by one thread at a time.
    std::mutex m_quotaMutex;
    std::atomic<bool> m_interrupted {false};
};

} // namespace farm
