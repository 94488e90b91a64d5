#pragma once

#include <QObject>
#include <QVariantMap>

class VTAccountPanel;
class VTJobList;
class VTPageBar;
class VTRequests;
class VTSearch;
class VTSetParent;
class VTTray;
struct VTMainForm;
struct VTSession;
struct VTServices;
struct VTTimers;

/// The beginning and the end of a session.
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
        VTAccountPanel& account;
        VTPageBar& pageBar;
        VTJobList& jobList;
        VTTray& tray;
        VTSearch& search;
        VTSetParent& setParent;
    };

    /// What the needs refer to must outlive this object.
    explicit VTSignIn(const Dependencies& dependencies);

    void HandleSignInAnswer(int nRet, const QVariantMap& mapAnswer);
    void RequestSignOut() const;

    /// Ends the session, whatever the farm says of it.
    void HandleSignOutAnswer();

signals:
    /// The user's names are known; the per-account settings can be read.
    void UserKnown();
    /// The user-info timer has been started for this session.
    void UserInfoTimerStarted();
    void SignedIn(QString strServer, QString strLoginName, QString strToken, QString strUserName);

private:
    void AnnounceSession();
    void ClearLists();

    Dependencies m_deps;
};
