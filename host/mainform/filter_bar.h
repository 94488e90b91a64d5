#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QVariantMap>
#include <QWidget>

class QLabel;

/// A bar above the list of farm jobs that names the search or group which limits it, with the number of jobs found and
/// a button that shows all jobs again.
class FilterBar : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Finds the bar. Call it whenever the main form is shown for a new session, because it may be a new one.
    void BeginSession();

    /// @param answer is the answer to a request for jobs, with the request's "identifier" and "conditions".
    void HandleJobList(int code, const QVariantMap& answer);

    /// Makes the window list all jobs.
    void ShowAll();

    bool eventFilter(QObject* watched, QEvent* event) override;

signals:
    /// The window has received a list of jobs.
    void JobsListed(bool isFiltered);

private:
    void Update();
    void Elide();
    void MarkAll();

    QPointer<QWidget> m_form;
    QPointer<QWidget> m_bar;
    QPointer<QLabel> m_label;
    QPointer<QLabel> m_found;
    QString m_conditions;
    QString m_group;
    QString m_text;
    int m_total = 0;
};
