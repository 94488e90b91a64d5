#pragma once

#include "farm/accounts/account_terms.h"
#include "farm/base/schema.h"

#include <QJsonObject>

namespace farm {

class ApiRequest;
class ContentStore;
class HttpServer;
class RequestGate;

/// Routes for the disk space that an account uses.
class StorageRoutes
{
public:
    StorageRoutes(RequestGate& gate, Database& database, ContentStore& contents, const AccountTerms& terms);

    /// The routes must outlive the server.
    void AddTo(HttpServer& server);

private:
    QJsonObject Show(const ApiRequest& request);
    QJsonObject Free(const ApiRequest& request);

    RequestGate& m_gate;
    Database& m_database;
    ContentStore& m_contents;
    const AccountTerms& m_terms;
};

} // namespace farm
