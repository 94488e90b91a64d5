#pragma once

#include "host/rendercore/download/download_task.h"

#include <QFile>
#include <QObject>
#include <QTimer>

#include <deque>
#include <memory>

class FileHashing;

/// Verifies the checksums of finished files, one at a time. They are hashed in a thread of its own, so that transfers
/// in this object's thread continue meanwhile.
class FileChecks : public QObject
{
    Q_OBJECT

public:
    FileChecks();
    ~FileChecks() override;

    void Add(const DownloadTasks& tasks);
    void Clear();

signals:
    /// The task's file is missing or differs from the downloaded one.
    void Damaged(qint64 id);

private:
    void CheckNext();
    void Conclude(bool isWhole);

    std::deque<DownloadTask> m_tasks;
    QTimer m_turn;
    QFile m_file; // file of the first task
    std::unique_ptr<FileHashing> m_hashing;
};
