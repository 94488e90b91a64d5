#pragma once

#include <QDir>
#include <QStringList>

#include <map>

namespace farm {

/// The lists that tell the tasks of the cluster what to do: a file for each batch, with the folder of a run in each
/// line. A batch is submitted under the name of its list, so a restarted farm finds its runs on the cluster by the
/// lists.
class BatchLists
{
public:
    explicit BatchLists(const QString& folder);

    /// Throws std::runtime_error.
    void MakeFolder() const;
    QString File(const QString& batch) const;
    /// The list is on the disk when it returns. Throws std::runtime_error.
    void Write(const QString& batch, const QStringList& runFolders) const;
    void Remove(const QString& batch) const;
    /// The folders of the runs of each batch.
    std::map<QString, QStringList> ReadAll() const;

private:
    QDir m_folder;
};

} // namespace farm
