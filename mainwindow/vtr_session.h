#pragma once

#include <QString>

/// Who is signed in. The values stay after the sign-out; only the flag says whether they are in force.
struct VTSession
{
    QString strLoginName; ///< name that the user signs in with; shown, and part of file names
    QString
        strUserName; ///< the account's own name; in every request and in the keys of the per-account switches
    QString strToken;
    QString strServer; ///< the current server's name
    bool bSignedIn = false;
};
