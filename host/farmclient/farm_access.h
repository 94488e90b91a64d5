#pragma once

#include "host/farmclient/proxy_login.h"

#include <QString>
#include <QUrl>

class ConnectionFeed;

/// The farm's address and the session on it. Workers receive a copy whenever it changes.
struct FarmAccess
{
    QUrl apiRoot;   ///< empty while there is no server
    QString token;  ///< identifies the session, never to be logged; empty while nobody is signed in
    QString owner;  ///< server and account in one text, the key of the tasks; empty while nobody is signed in
    QString folder; ///< absolute path below which the owner's finished frames are saved
    ProxyLogin proxy = {};
    bool isOnThisComputer = false;  ///< the farm runs here, so compressing costs more than it saves
    ConnectionFeed* feed = nullptr; ///< told of all exchanges; outlives the workers; may be null

    bool IsOpen() const { return !apiRoot.isEmpty() && !token.isEmpty(); }
};
