#pragma once

#include <QObject>
#include <QVariantMap>

class VTAccountPanel;
class VTAccountSettings;
class VTJobList;
class VTPageBar;
class VTRequests;
class VTSearch;
class VTSetParent;
class VTTray;
struct VTMainForm;
struct VTServices;
struct VTSession;
struct VTTimers;

/// Begins and ends sessions.
class VTSignIn : public QObject
{
    Q_OBJECT

public:
    struct Dependencies
    {
        const VTMainForm& form;
        const VTServices& services;
        const VTTimers& timers;
        const VTRequests& requests;
        VTSession& session;
        VTAccountSettings& settings;
        const VTAccountPanel& accountPanel;
        VTPageBar& pageBar;
        VTJobList& jobList;
        VTTray& tray;
        VTSearch& search;
        VTSetParent& setParent;
    };

    /// Everything in `dependencies` must outlive this object.
    explicit VTSignIn(const Dependencies& dependencies);

    /// Begins a session when the answer reports success; otherwise does nothing.
    void HandleSignInAnswer(int nRet, const QVariantMap& mapAnswer);

    /// Asks the farm to end the session, and tells the render core that its local tasks end (they are kept).
    void RequestSignOut() const;

    /// Ends the session, whether or not the farm reports success.
    void HandleSignOutAnswer();

signals:
    void SignedIn(QString strServer, QString strLoginName, QString strToken, QString strUserName);

private:
    void AnnounceSession();
    void ClearLists();

    Dependencies m_deps;
};
