#pragma once

#include "host/farmclient/farm_fault.h"
#include "host/space/space_dialog.h"

#include <QAction>
#include <QObject>
#include <QPointer>

class CommunicationService;
class HttpCall;
class VTMessagboxInterface;
struct HttpRequest;

/// Shows what the account holds on the farm, and frees it when the user asks: from the account's part of the main form, or
/// from the tray menu.
class SpaceControl : public QObject
{
    Q_OBJECT

public:
    /// Create it when the tray menu has its other entries. The services must outlive this object.
    SpaceControl(CommunicationService* communication, VTMessagboxInterface* messageBox,
        VTUiLoaderInterface* loader, QObject* parent = nullptr);

    /// Finds the main form's button. Call it whenever the form is shown for a new session, because it may be a new one.
    /// @param token identifies the session; must never be logged.
    void BeginSession(const QString& token);
    void EndSession();

    void Open();

signals:
    /// Files have been removed from the farm.
    void Freed();

private:
    void Load();
    void Reload();
    void AskToDelete(const std::vector<FarmSpace::Job>& jobs);
    void AskToFree(qint64 bytes);
    bool AskToConfirm(const QString& question, const QString& consent);
    void Delete(const std::vector<FarmSpace::Job>& jobs);
    void Free();
    HttpCall* Ask(const QByteArray& verb, const QByteArray& query = {});
    void Translate();

    CommunicationService* m_communication;
    VTMessagboxInterface* m_messageBox;
    VTUiLoaderInterface* m_loader;
    SpaceDialog m_dialog;
    QAction m_entry; // of the tray menu
    QString m_token; // empty while nobody is signed in
    QPointer<HttpCall> m_load;
};
