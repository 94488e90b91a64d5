#pragma once

#include "host/rendercore/download/download_task.h"

#include <QObject>
#include <QTimer>

#include <deque>

/// Looks at files that should be whole, one at a time, so that the transfers of the thread go on between them.
class FileChecks : public QObject
{
    Q_OBJECT

public:
    FileChecks();

    void Add(const DownloadTasks& tasks);
    void Clear() { m_tasks.clear(); }

signals:
    /// The task's file is not there, or not what the task says.
    void Damaged(qint64 id);

private:
    void CheckNext();

    std::deque<DownloadTask> m_tasks;
    QTimer m_turn;
};
