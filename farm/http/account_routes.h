#pragma once

#include "farm/http/rate_limiter.h"

#include <QJsonObject>

namespace farm {

class AccountStore;
class ApiRequest;
class ChangeFeed;
class HttpServer;
class RequestGate;
struct RequestLimits;

/// Routes for sessions, the account and its projects.
class AccountRoutes
{
public:
    AccountRoutes(RequestGate& gate, AccountStore& accounts, ChangeFeed& feed, const RequestLimits& limits);

    /// The routes must outlive the server.
    void AddTo(HttpServer& server);

private:
    QJsonObject SignIn(const ApiRequest& request);
    QJsonObject SignOut(const ApiRequest& request);
    QJsonObject ShowAccount(const ApiRequest& request);
    QJsonObject ListProjects(const ApiRequest& request);
    QJsonObject ShowSpending(const ApiRequest& request);

    RequestGate& m_gate;
    AccountStore& m_accounts;
    ChangeFeed& m_feed;
    RateLimiter m_signInsByAddress;
    RateLimiter m_failedSignInsByName;
};

} // namespace farm
