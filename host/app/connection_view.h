#pragma once

#include "host/ui/connection_dialog.h"

#include <QObject>
#include <QPointer>

class ConnectionFeed;
class ConnectionStrip;

/// Shows the connection in the main form, and its details in a dialog when the user asks.
class ConnectionView : public QObject
{
    Q_OBJECT

public:
    /// @param feed, loader must outlive this object.
    ConnectionView(ConnectionFeed* feed, VTUiLoaderInterface* loader, QObject* parent = nullptr);

    /// Puts the strip into the main form. Call it whenever the form is shown for a new session, because it may be a new one.
    /// @param server shown to the user; empty for the farm on this computer.
    /// @param token identifies the session.
    void BeginSession(const QString& server, const QString& token);

    /// Closes the dialog and forgets the failures, which may name the account's jobs.
    void EndSession();

signals:
    /// The user has asked whether the farm can be reached now.
    void TryAgainRequested();

private:
    void Open();
    void Refresh();

    ConnectionFeed* m_feed;
    ConnectionDialog m_dialog;
    QPointer<ConnectionStrip> m_strip;
    QString m_server;
};
