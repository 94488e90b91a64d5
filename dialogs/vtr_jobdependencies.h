#pragma once

#include "common/vtr_listfile.h"

#include <QSet>
#include <QString>
#include <QStringList>
#include <QVector>

/// A job that others wait for.
struct VTParentJob
{
    QString strId;
    QString strType;

    // An entry is stored as "id&type"; a missing type reads as empty.
    QString Entry() const;
    static VTParentJob FromEntry(const QString& strEntry);
};

/// Jobs that wait for other jobs: the account's dependency file, and the queue of son groups whose parents are polled
/// next.
///
/// Jobs that were made to wait together are one son group. Its key is their ids joined by "&".
class VTJobDependencies
{
public:
    /// Switches to an account's file and queues all its son groups.
    void Open(const QString& strPath);
    QString Path() const { return m_file.Path(); }

    /// Leaves the account's file. Finished parents stay known.
    void Close();

    /// Makes a son group wait for the jobs of the entries and queues it.
    /// @return whether it was saved. If not, it holds until the client quits.
    bool Record(const QStringList& lstSon, const QStringList& lstParentEntry);

    bool HasQueued() const { return !m_lstQueue.isEmpty(); }

    /// Queues all son groups of the file again. @return whether there are any.
    bool Requeue();

    /// Removes the next son group from the queue. @return its parents; none when it is no longer in the file.
    QVector<VTParentJob> TakeNext();

    /// Remembers a finished parent for as long as this object lives.
    /// @return the keys of the son groups that wait for it and whose other parents have finished too.
    QStringList Finish(const QString& strJobId);

    /// @return whether a son group is in the file and all its parents have finished.
    bool IsReady(const QString& strKey) const;

    /// Removes a son group from the file. @return whether the file was saved.
    bool Release(const QString& strKey) const { return m_file.Remove(strKey); }

    static QStringList Sons(const QString& strKey) { return strKey.split(QLatin1Char('&')); }

private:
    bool AllFinished(const QStringList& lstParentEntry) const;

    VTListFile m_file;
    VTListFile m_leftFile; ///< the last session's file, until the next session begins
    QStringList m_lstQueue;
    QSet<QString> m_setFinished;
};
