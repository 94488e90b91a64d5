#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QWidget>

class CommunicationService;
class QTableWidget;
struct FarmChanges;

/// Has the window refresh the job list and the balances when the farm announces that they have changed. Without
/// announcements the window's own timers refresh them.
class LiveRefresh : public QObject
{
    Q_OBJECT

public:
    /// Create it after the plugin has started, so that the main window receives each answer first.
    /// @param communication must outlive this object.
    explicit LiveRefresh(CommunicationService* communication, QObject* parent = nullptr);

    /// @param token identifies the session; must never be logged.
    void BeginSession(const QString& userName, const QString& token);
    void EndSession();

private:
    void HandleChanges(const FarmChanges& changes);
    void Refresh();
    void Invoke(const char* slot);
    bool ShowsOneOf(const QStringList& jobs);

    CommunicationService* m_communication;
    QPointer<QWidget> m_window;
    QPointer<QTableWidget> m_table;
    QTimer m_pause; // the pause between two refreshes
    bool m_listIsDue = false;
    bool m_moneyIsDue = false;
};
