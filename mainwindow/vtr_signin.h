#pragma once

#include <QObject>
#include <QVariantMap>

class VTAccountPanel;
class VTAccountSettings;
class VTContextMenus;
class VTGroup;
class VTJobList;
class VTPageBar;
class VTRequests;
class VTSearch;
class VTSetArgument;
class VTSetParent;
class VTTaskQuestions;
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
        VTContextMenus& menus;
        VTTray& tray;
        VTTaskQuestions& uploadRetries;
        VTTaskQuestions& lackedTextures;
        VTSearch& search;
        VTSetParent& setParent;
        VTSetArgument& setArgument;
        VTGroup& group;
    };

    /// Everything in `dependencies` must outlive this object.
    explicit VTSignIn(const Dependencies& dependencies);

    /// Begins a session when the answer reports success; otherwise does nothing. A sign-out or another sign-in from inside
    /// one of its steps wins.
    void HandleSignInAnswer(int nRet, const QVariantMap& mapAnswer);

    /// Asks the farm to end the session, and tells the render core that its local tasks end (they are kept).
    void RequestSignOut() const;

    /// Ends the session, whether or not the farm reports success.
    void HandleSignOutAnswer();

signals:
    void SignedIn(QString strServer, QString strLoginName, QString strToken, QString strUserName);

private:
    void ReadServer();
    void CloseDialogs(int nSession);
    void ClearSession();
    void ClearLists();

    Dependencies m_deps;
    bool m_bClearingDue = false; ///< a session has ended, but its lists are not cleared yet
};
