#pragma once

#include "host/rendercore/download/download_task.h"

#include <QObject>
#include <QTimer>

class DownloadStore;

/// Removes finished tasks from one owner's list: old ones gradually, or all of them at the user's command. Their files
/// stay. Works in batches, so that transfers in the same thread continue in between.
class FinishedCleanup : public QObject
{
    Q_OBJECT

public:
    /// @param store must outlive this object.
    /// @param retryPause after a failure, in milliseconds.
    FinishedCleanup(DownloadStore* store, int retryPause);

    void SetOwner(const QString& owner);

    /// @param days for which finished tasks stay in the list; 0 for ever.
    void SetKeepDays(int days);

    void ClearAll();

signals:
    void Removed(const TaskIds& ids);

private:
    void RemoveBatch();

    DownloadStore* m_store;
    int m_retryPause;
    QString m_owner;
    int m_keepDays = 0;
    qint64 m_clearBefore = 0; // seconds since 1970; 0 when the user has not asked
    QTimer m_timer;
};
