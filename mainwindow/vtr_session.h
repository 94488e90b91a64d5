#pragma once

#include <QString>

/// The user who is signed in. The values stay after the sign-out; only the flag tells whether the session is still open.
struct VTSession
{
    /// Name that the user signs in with: shown, and part of file names.
    QString strLoginName;
    /// The account's own name, used in every request and in the keys of the per-account switches.
    QString strUserName;
    QString strToken;
    QString strServer; ///< name of the current server
    bool bSignedIn = false;
};
