#pragma once

#include "host/rendercore/download/download_task.h"
#include "storage/database.h"

#include <QHash>
#include <QSet>
#include <QStringList>

/// The changes that an answered order made to the tasks.
struct OrderOutcome
{
    DownloadTasks added;
    DownloadTasks renewed; ///< waiting for a changed file; data received so far are useless
    DownloadTasks resumed; ///< waiting again; data received so far count
    DownloadTasks
        doubtful;      ///< finished with the farm's current file; the file on the disk should be verified
    QStringList names; ///< all files that the farm lists
};

/// Brings one job's tasks in line with the farm's list of its files, within a transaction. Does not look at the disk: a
/// transfer that finds something at its destination gets another name.
class Reconciliation
{
public:
    /// All parameters must outlive this object.
    Reconciliation(SQLite::Database& connection, const QString& owner, const DownloadOrder& order);

    void Reconcile(const FarmFile& file, const QString& folder);

    const OrderOutcome& Outcome() const { return m_outcome; }

private:
    void Add(const FarmFile& file, const QString& folder);
    bool IsTaken(const QString& file);
    void Renew(DownloadTask task, const FarmFile& file);

    const QString& m_owner;
    const DownloadOrder& m_order;
    SQLite::Statement m_insert;
    SQLite::Statement m_isTaken;
    SQLite::Statement m_renew;
    SQLite::Statement m_resume;
    SQLite::Database& m_connection;
    QHash<QString, DownloadTask> m_known; // by name
    QSet<QString> m_removed;              // names that the order does not bring back
    OrderOutcome m_outcome;
};
