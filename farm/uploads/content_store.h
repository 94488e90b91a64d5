#pragma once

#include "farm/base/schema.h"
#include "farm/uploads/package_reader.h"

#include <QHash>
#include <QStringList>

#include <cstdint>
#include <vector>

namespace farm {

/// The contents of files, each kept once under its checksum, and which accounts have sent which.
/// May be used by several threads at a time.
class ContentStore
{
public:
    /// Creates the folder and removes what was left half taken in. Throws std::runtime_error.
    ContentStore(Database& database, const QString& folder);

    /// A new, empty folder on the disk of the contents, for files that are to be passed to Take().
    QString NewIncomingFolder();

    /// Moves the files in; they are on the disk when it returns, but belong to no account yet.
    void Take(const std::vector<UnpackedFile>& files);
    /// Makes the contents the account's.
    void Give(std::int64_t account, const std::vector<UnpackedFile>& files);

    /// The sizes in bytes of the given contents. Left out are those that the account has not sent, and those that are
    /// missing or cut off on the disk.
    QHash<QString, std::int64_t> SizesOf(std::int64_t account, const QStringList& checksums);
    /// The given checksums without those that SizesOf() leaves out.
    QStringList KnownTo(std::int64_t account, const QStringList& checksums);
    /// The bytes that the account's contents would take together once these files were among them.
    std::int64_t BytesWith(std::int64_t account, const std::vector<UnpackedFile>& files);

    /// Copies a content to a file that does not exist yet and verifies the copy. Throws std::runtime_error.
    void CopyTo(const QString& checksum, const QString& target) const;

private:
    void RemoveStrayFiles();
    QString FileOf(const QString& checksum) const;

    Database& m_database;
    QString m_folder;
};

} // namespace farm
