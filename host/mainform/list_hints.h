#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>

class ListHint;

/// Explains over each empty list of the main form why it is empty and what to do.
class ListHints : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Gives the lists their hints. Call it whenever the main form is shown for a new session, because it may be a new one.
    /// The list of farm jobs has none until jobs have been listed.
    void BeginSession();

    /// @param isFiltered whether a search or a group limits the list of farm jobs.
    void HandleJobsListed(bool isFiltered);

signals:
    void AllJobsRequested();

private:
    QPointer<QWidget> m_form;
    QPointer<ListHint> m_jobs;
};
