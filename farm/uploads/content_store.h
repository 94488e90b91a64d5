#pragma once

#include "farm/base/schema.h"
#include "farm/uploads/package_reader.h"

#include <QHash>
#include <QStringList>

#include <cstdint>
#include <vector>

namespace farm {

/// The contents of files, by checksum and each once, and which account has brought which.
/// May be used by several threads at a time.
class ContentStore
{
public:
    /// Makes the folder and removes what was being taken in when the farm ended. Throws std::runtime_error.
    ContentStore(Database& database, const QString& folder);

    /// A new, empty folder for files that are to become contents; Take() finds them there.
    QString NewIncomingFolder();

    /// Moves the files in; they are on the disk when it returns. They belong to nobody yet.
    void Take(const std::vector<UnpackedFile>& files);
    /// The contents are the account's from now on.
    void Give(std::int64_t account, const std::vector<UnpackedFile>& files);

    /// The sizes in bytes of those of the contents that the account has here.
    QHash<QString, std::int64_t> SizesOf(std::int64_t account, const QStringList& checksums);
    /// Those of the checksums whose contents the account has here.
    QStringList KnownTo(std::int64_t account, const QStringList& checksums);
    /// The sizes of the account's contents together, and those of the files among them that it does not have yet.
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
