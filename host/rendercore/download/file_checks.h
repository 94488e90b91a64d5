#pragma once

#include "host/rendercore/download/download_task.h"

#include <QObject>
#include <QTimer>

#include <deque>

/// Verifies the checksums of finished files, one at a time, so that transfers in the same thread continue in between.
class FileChecks : public QObject
{
    Q_OBJECT

public:
    FileChecks();

    void Add(const DownloadTasks& tasks);
    void Clear() { m_tasks.clear(); }

signals:
    /// The task's file is missing or differs from what was downloaded.
    void Damaged(qint64 id);

private:
    void CheckNext();

    std::deque<DownloadTask> m_tasks;
    QTimer m_turn;
};
