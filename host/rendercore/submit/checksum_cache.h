#pragma once

#include "storage/database.h"

#include <QString>
#include <QVector>

#include <memory>

/// The state of a file when its content was read. When the content changes, so does the stamp.
struct FileStamp
{
    QString path;
    qint64 size = -1;    ///< in bytes; -1 when there is no such file
    qint64 modified = 0; ///< nanoseconds since the epoch, like `changed`
    qint64 changed = 0;  ///< time of the last change of content or attributes, which no program can set back

    static FileStamp Of(const QString& path);
};

inline bool operator==(const FileStamp& one, const FileStamp& other)
{
    return one.path == other.path && one.size == other.size && one.modified == other.modified
        && one.changed == other.changed;
}

/// The checksums of files that have been packed before, so that unchanged files need not be read again. Keeps the ones
/// used last. Without its database it knows nothing. Belongs to one thread at a time.
class ChecksumCache
{
public:
    struct Entry
    {
        FileStamp file;
        QString checksum; ///< SHA-256 of the content
    };

    /// @param database path of submissions.sqlite; opened when it is needed.
    explicit ChecksumCache(const QString& database);
    ~ChecksumCache();

    /// The checksum of a file as it is now; empty when it is unknown.
    QString Find(const FileStamp& file);

    /// Records contents that have just been read, or were found by Find(). A file that has changed moments ago is forgotten
    /// instead, because another change might leave its times as they are.
    void Record(const QVector<Entry>& entries);

private:
    storage::Database* Open();

    QString m_path;
    std::unique_ptr<storage::Database> m_database; // null until it is needed
};
