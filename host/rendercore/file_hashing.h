#pragma once

#include "storage/checksum.h"

#include <QFile>
#include <QObject>
#include <QThread>

#include <atomic>
#include <memory>
#include <utility>

/// Hashes an open file from its position to its end in a thread of its own, so that transfers continue meanwhile.
class FileHashing : public QObject
{
    Q_OBJECT

public:
    /// Starts at once.
    /// @param file must outlive this object and must not be used until Finished() has been emitted.
    explicit FileHashing(QFile* file);

    /// Ends the hashing early.
    ~FileHashing() override;

    // The results are valid once Finished() has been emitted.
    QString Checksum() const { return m_hash.Result(); }
    storage::Sha256 TakeHash() { return std::move(m_hash); }
    qint64 Bytes() const { return m_bytes; }

    /// @return false when the file could not be read to its end.
    bool IsComplete() const { return m_isComplete; }

signals:
    /// Emitted once, in the thread of this object.
    void Finished();

private:
    void Run();

    QFile* m_file;
    storage::Sha256 m_hash;
    qint64 m_bytes = 0;
    bool m_isComplete = false;
    std::atomic<bool> m_isAbandoned {false};
    std::unique_ptr<QThread> m_thread;
};
