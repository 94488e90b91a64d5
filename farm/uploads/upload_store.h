#pragma once

#include "farm/accounts/account_terms.h"
#include "farm/base/disk_reserve.h"
#include "farm/uploads/package_reader.h"
#include "farm/uploads/upload_locks.h"

#include <QByteArray>

#include <atomic>
#include <cstdint>
#include <functional>
#include <mutex>
#include <vector>

namespace farm {

class ContentStore;

/// A package that is arriving at the farm, or one that has been unpacked.
struct Upload
{
    QString id;
    QString checksum;
    /// The size of the whole package in bytes.
    std::int64_t size = 0;
    /// The number of bytes that are on the disk.
    std::int64_t offset = 0;
    bool unpacked = false;
    /// The files of the package, once it is unpacked.
    std::vector<PackedFile> files;
};

/// The packages that arrive in chunks. Thread-safe; one thread at a time works on an upload. Functions throw NotFound when
/// an id is not one of the account's uploads. Times are seconds since the epoch.
class UploadStore
{
public:
    static constexpr std::int64_t LargestPackage = std::int64_t {8} * 1024 * 1024 * 1024; // bytes

    /// Creates the folder and removes packages that belong to no upload. Throws std::runtime_error.
    /// @param terms limit the bytes of the contents and unfinished uploads of an account.
    /// @param reserve is the disk space below which nothing new is accepted.
    UploadStore(Database& database, ContentStore& contents, const QString& folder, const AccountTerms& terms,
        DiskReserve reserve = {});

    /// The account's upload of this package, or a new one. Throws TooLarge and QuotaExceeded.
    Upload Begin(std::int64_t account, const QString& checksum, std::int64_t size, std::int64_t now);
    Upload Find(std::int64_t account, const QString& id);
    /// Appends bytes, which are on the disk when it returns. Throws Conflict when the upload does not end at `offset`,
    /// InvalidInput when the package would become larger than announced, and Busy.
    Upload Append(std::int64_t account, const QString& id, std::int64_t offset, const QByteArray& bytes,
        std::int64_t now);
    /// Verifies the package, stores its contents and deletes it; a repeated call returns the same result.
    /// Throws Conflict while bytes are missing, BadPackage, QuotaExceeded and Busy.
    Upload Unpack(std::int64_t account, const QString& id, std::int64_t now);

    /// Deletes the upload and its bytes; the contents of an unpacked one stay. `address` is where the request
    /// comes from. Throws Busy.
    void Remove(std::int64_t account, const QString& id, std::int64_t now, const QString& address);
    /// Deletes the uploads that no request has touched for seven days.
    void ForgetOld(std::int64_t now);
    /// Makes Unpack() stop, because the farm is shutting down.
    void Interrupt() { m_interrupted = true; }

private:
    QString FileOf(const QString& id) const;
    void Touch(const QString& id, std::int64_t now);
    void Forget(const QString& id);
    void RemoveStrayFiles();
    void CheckCount(std::int64_t account);
    bool HasLostContents(std::int64_t account, const Upload& upload);
    void ForgetWhenOld(const QString& id, std::int64_t bound);
    std::int64_t QuotaOf(std::int64_t account);
    /// Makes room if possible by forgetting contents that no job needs. `more` returns the bytes needed beside those of
    /// the unfinished uploads.
    void RequireQuota(std::int64_t account, const std::function<std::int64_t()>& more, std::int64_t now);
    bool IsWithinQuota(std::int64_t account, std::int64_t more);
    Upload Add(std::int64_t account, const QString& checksum, std::int64_t size, std::int64_t now);
    void TakeContents(std::int64_t account, Upload& upload, const QString& incoming, std::int64_t now);

    Database& m_database;
    ContentStore& m_contents;
    QString m_folder;
    const AccountTerms& m_terms;
    DiskReserve m_reserve;
    UploadLocks m_locks;
    // Locked from a quota check until the checked bytes are recorded.
    std::mutex m_quotaMutex;
    std::atomic<bool> m_interrupted {false};
};

} // namespace farm
