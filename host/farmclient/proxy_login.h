#pragma once

#include <QString>
#include <QUrl>

/// Name and password for a proxy that asks for them, as the user typed them. Never to be logged.
struct ProxyLogin
{
    QString name; ///< empty while the user has given none
    QString password;
};

/// @return host and port of the proxy through which requests to the server go; empty for none.
QString ProxyName(const QUrl& server);
