#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>

class QTableWidget;

/// Notices double clicks on jobs in the main form, and the keys Enter and Ctrl+I there. The host, not the window, shows
/// a job's frames.
class JobTrigger : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Watches the table of jobs. Call it whenever the main form is shown, because the form may be a new one.
    void Attach();

signals:
    /// @param name is the job's name as the table shows it.
    /// @param folder is the folder of the job's downloads, below the account's folder.
    void FramesRequested(const QString& job, const QString& name, const QString& folder);

private:
    void HandleDoubleClick(int row);
    void Request(int row);

    QPointer<QTableWidget> m_table;
};
