#pragma once

#include "host/rendercore/download/download_task.h"

#include <QObject>
#include <QTimer>

class DownloadStore;

/// Reads an owner's tasks in batches. The next batch is read when the last one has been processed, so that a long list
/// never floods the GUI thread.
class TaskLoader : public QObject
{
    Q_OBJECT

public:
    /// @param store must outlive this object.
    /// @param retryPause after a failure, in milliseconds.
    TaskLoader(DownloadStore* store, int retryPause);

    /// Reads the tasks of an owner from the first one on. Without an owner there is nothing to read.
    void Start(const QString& owner);

    /// Continues after the last batch has been processed.
    void Continue();

    bool IsLoading() const { return m_isLoading; }

signals:
    void Loaded(const DownloadTasks& tasks);
    /// There are no further tasks.
    void Done();

private:
    void LoadBatch();

    DownloadStore* m_store;
    int m_retryPause;
    QString m_owner;
    bool m_isLoading = false;
    qint64 m_lastId = 0; // the last task that was loaded
    QTimer m_timer;
};
