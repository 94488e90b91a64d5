#pragma once

#include "dialogs/vtr_listfile.h"

#include <QSet>
#include <QString>
#include <QStringList>
#include <QVector>

/// A job that others wait for.
struct VTParentJob
{
    QString strId;
    QString strType;

    /// The form in which it stands in the file, "id&type"; a missing type reads as empty.
    QString Entry() const;
    static VTParentJob FromEntry(const QString& strEntry);
};

/// Jobs that wait for other jobs: the account's dependency file, and the queue in which its parents are asked about.
///
/// Jobs that were made to wait together are one son group. Its key is their identities joined by "&".
class VTJobDependencies
{
public:
    /// Goes over to an account's file and queues all its son groups.
    void Open(const QString& strPath);
    QString Path() const { return m_file.Path(); }

    /// Makes a son group wait for the jobs of the entries and queues it.
    /// @return whether this is on the disk; when not, it holds until the client ends.
    bool Record(const QStringList& lstSon, const QStringList& lstParentEntry);

    bool HasQueued() const { return !m_lstQueue.isEmpty(); }

    /// Queues all son groups of the file anew.
    /// @return whether there are any.
    bool Requeue();

    /// Takes the next son group off the queue; its parents, none when it has gone from the file.
    QVector<VTParentJob> TakeNext();

    /// Notes a finished parent, for as long as this object lives, and tells which son groups are waiting for it and for
    /// no unfinished job: their keys.
    QStringList Finish(const QString& strJobId);

    /// Ends the waiting of a son group.
    /// @return whether this is on the disk.
    bool Release(const QString& strKey) const { return m_file.Remove(strKey); }

    static QStringList Sons(const QString& strKey) { return strKey.split(QLatin1Char('&')); }

private:
    bool AllFinished(const QStringList& lstParentEntry) const;

    VTListFile m_file;
    QStringList m_lstQueue;
    QSet<QString> m_setFinished;
};
