#pragma once

#include <QString>

/// The user who is signed in. The texts stay after the sign-out; `bOpen` tells whether they belong to a session.
struct VTSession
{
    /// Name that the user signs in with: shown, and part of file names.
    QString strLoginName;
    /// The account's own name, used in every request and in the keys of the per-account switches.
    QString strUserName;
    QString strToken;
    QString strServer; ///< name of the current server

    /// Set at the end of a sign-in; answers belong to the session before that.
    bool bSignedIn = false;
    /// Whether there is a session, from the sign-in's answer to the sign-out's.
    bool bOpen = false;
    /// Changes whenever a session begins or ends. After a call that may process events, the same number means that the
    /// same user is still signed in and that the window is still there.
    int nNumber = 0;

    void Begin()
    {
        ++nNumber;
        bOpen = true;
    }
    void End()
    {
        ++nNumber;
        bOpen = bSignedIn = false;
    }
};
