#pragma once

#include "farm/base/schema.h"
#include "farm/uploads/content_copy.h"
#include "farm/uploads/package_reader.h"

#include <QHash>
#include <QStringList>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

namespace farm {

/// A condition over `contents`: no job of the account that has the content needs it.
constexpr const char* NoJobNeedsTheContent = "NOT EXISTS (SELECT 1 FROM job_files JOIN jobs ON key = job "
                                             "WHERE job_files.checksum = contents.checksum "
                                             "AND jobs.account = contents.account AND jobs.status <> 5)";

/// The contents of files, each stored once under its checksum, and the accounts that have sent them. A content that no job
/// of its account needs is forgotten some time after its last use. Thread-safe. Times are seconds since the epoch.
class ContentStore
{
public:
    /// Creates the folder and removes files of interrupted unpacks. Throws std::runtime_error.
    ContentStore(Database& database, const QString& folder);

    /// Creates an empty folder on the disk of the contents, for files that will be passed to Take().
    QString NewIncomingFolder();

    /// Keeps contents that do not belong to an account yet from being removed.
    class Taken
    {
    public:
        Taken(ContentStore& store, QStringList checksums);
        ~Taken();
        Taken(const Taken&) = delete;
        Taken& operator=(const Taken&) = delete;

    private:
        ContentStore& m_store;
        QStringList m_checksums;
    };

    /// Moves the files in. They are on the disk when it returns, but belong to no account until Give(); keep the result
    /// until then.
    [[nodiscard]] std::unique_ptr<Taken> Take(const std::vector<UnpackedFile>& files);
    /// Records that the account has these contents.
    void Give(std::int64_t account, const std::vector<UnpackedFile>& files, std::int64_t now);

    /// The sizes in bytes of the given contents. Contents that the account has not sent, or that are missing or truncated
    /// on the disk, are left out.
    QHash<QString, std::int64_t> SizesOf(std::int64_t account, const QStringList& checksums);
    /// The given checksums without those that SizesOf() leaves out.
    QStringList KnownTo(std::int64_t account, const QStringList& checksums);
    /// Records that the account uses these contents now.
    void Touch(std::int64_t account, const QStringList& checksums, std::int64_t now);
    /// The bytes that the account would use if it had these files as well.
    std::int64_t BytesWith(std::int64_t account, const std::vector<UnpackedFile>& files);

    /// Forgets the contents that were last used at `usedBefore` or earlier and that no job of their account needs; those
    /// that are needed count as used at `now`. `goOn` is called now and then; false stops the work.
    void ForgetUnneeded(
        std::int64_t usedBefore, std::int64_t now, const std::function<bool()>& goOn = [] { return true; });
    /// The same for the contents of one account. Returns the bytes that no longer count.
    std::int64_t ForgetUnneededOf(std::int64_t account, std::int64_t usedBefore);
    /// Forgets all contents that no job of the account needs, at the account's request. `address` is where the request
    /// comes from.
    std::int64_t FreeUnneededOf(std::int64_t account, std::int64_t now, const QString& address);

    /// Provides a content as a file that does not exist yet, see ShareFile(), and verifies it. Throws Interrupted and
    /// std::runtime_error.
    void ProvideAs(const QString& target, const QString& checksum, bool mayLink, const GoesOn& goesOn) const;

private:
    void RemoveStrayFiles();
    void RemoveFiles(const QStringList& checksums);
    using Record = std::function<void(SQLite::Database&, std::int64_t bytes)>;
    std::int64_t ForgetUnneededOf(std::int64_t account, std::int64_t usedBefore, const Record& record);
    QString FileOf(const QString& checksum) const;

    Database& m_database;
    QString m_folder;
    // Held while files are moved in or removed, and never while the database is written.
    std::mutex m_filesMutex;
    /// The number of `Taken` objects that hold each content.
    std::map<QString, int> m_taken;
};

} // namespace farm
