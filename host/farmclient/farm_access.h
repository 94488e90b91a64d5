#pragma once

#include <QString>
#include <QUrl>

/// How the farm is reached just now, and for whom. It is handed to the workers by value whenever it changes.
struct FarmAccess
{
    QUrl apiRoot;  ///< empty while there is no server
    QString token; ///< of the session, never to be logged; empty while nobody is signed in
    QString owner; ///< whose tasks these are: server and account in one text; empty while nobody is signed in
    QString folder; ///< under which the owner's finished frames are to stand, absolute

    bool IsOpen() const { return !apiRoot.isEmpty() && !token.isEmpty(); }
};
