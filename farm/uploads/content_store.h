#pragma once

#include "farm/base/schema.h"
#include "farm/uploads/content_copy.h"
#include "farm/uploads/package_reader.h"

#include <QHash>
#include <QStringList>

#include <cstdint>
#include <vector>

namespace farm {

/// The contents of files, each stored once under its checksum, and the accounts that have sent them. Thread-safe.
class ContentStore
{
public:
    /// Creates the folder and removes files of interrupted unpacks. Throws std::runtime_error.
    ContentStore(Database& database, const QString& folder);

    /// Creates an empty folder on the disk of the contents, for files that will be passed to Take().
    QString NewIncomingFolder();

    /// Moves the files in; they are on the disk when it returns, but belong to no account yet.
    void Take(const std::vector<UnpackedFile>& files);
    /// Records that the account has these contents.
    void Give(std::int64_t account, const std::vector<UnpackedFile>& files);

    /// The sizes in bytes of the given contents. Contents that the account has not sent, or that are missing or truncated
    /// on the disk, are left out.
    QHash<QString, std::int64_t> SizesOf(std::int64_t account, const QStringList& checksums);
    /// The given checksums without the ones that SizesOf() leaves out.
    QStringList KnownTo(std::int64_t account, const QStringList& checksums);
    /// The bytes that the account would use if it had these files as well.
    std::int64_t BytesWith(std::int64_t account, const std::vector<UnpackedFile>& files);

    /// Provides a content as a file that does not exist yet, see ShareFile(), and verifies it. Throws Interrupted and
    /// std::runtime_error.
    void ProvideAs(const QString& target, const QString& checksum, bool mayLink, const GoesOn& goesOn) const;

private:
    void RemoveStrayFiles();
    QString FileOf(const QString& checksum) const;

    Database& m_database;
    QString m_folder;
};

} // namespace farm
