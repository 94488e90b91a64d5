#pragma once

#include <QByteArray>
#include <QMap>
#include <QStringList>

#include <cstdint>
#include <stdexcept>
#include <string>

/// Changes to files that survive a power cut. All functions throw DiskError when a system call fails.
namespace storage {

class DiskError : public std::runtime_error
{
public:
    DiskError(const std::string& what, int error)
        : std::runtime_error(what)
        , m_error(error)
    {
    }

    /// @return the `errno` of the system call.
    int Error() const { return m_error; }

private:
    int m_error;
};

/// Returns when the file or folder is on the disk.
void SyncToDisk(const QString& path);

/// Does SyncToDisk() for files and folders that are all on one disk; cheaper for many.
void SyncAllToDisk(const QStringList& paths);

/// Moves a complete file or folder to its final name on the same disk; an existing file of that name is replaced.
/// Content and name are on the disk when it returns.
void RenameDurably(const QString& from, const QString& to);

/// Does RenameDurably() for files, keyed by their final names, that are all on one disk; cheaper for many. When it
/// throws, any of them may have its final name.
void RenameAllDurably(const QMap<QString, QString>& fromByTo);

/// Writes the bytes at `offset`, the current end of the file, which is created when `offset` is 0. They are on the disk
/// when it returns; when they cannot be written, the file is truncated to `offset`.
void AppendDurably(const QString& path, std::int64_t offset, const QByteArray& bytes);

} // namespace storage
