#pragma once

#include <QString>

/// The user who is signed in. The values stay after the sign-out; the flag alone says whether they are in force.
struct VTSession
{
    /// Name that the user signs in with: shown, and part of file names.
    QString strLoginName;
    /// The account's own name: in every request, and in the keys of the per-account switches.
    QString strUserName;
    QString strToken;
    QString strServer; ///< name of the current server
    bool bSignedIn = false;
};
