#pragma once

#include "farm_access.h"

#include <QObject>
#include <QStringList>
#include <QVariantMap>

/// The files that are on their way from the farm, as the window sees them: on the GUI thread, for the account that is
/// signed in.
class DownloadQueue : public QObject
{
    Q_OBJECT

public:
    /// @param folder for the database; made when it is missing.
    explicit DownloadQueue(const QString& folder, QObject* parent = nullptr);
    ~DownloadQueue() override;

    /// Another owner has other tasks. Without a farm that can be reached the tasks wait where they are.
    void SetAccess(const FarmAccess& access);

    /// The live table by task id; see VTRenderCoreInterface::GetDownloadTasks(). Valid as long as this object.
    QVariantMap* Tasks() { return &m_tasks; }

signals:
    /// Tasks have come or gone.
    void ListChanged();
    /// A file is complete and has its name. Once a file.
    void FileFinished(const QString& file);

private:
    QVariantMap m_tasks;
};
