#pragma once

#include "farm/http/sign_in_limits.h"

#include <QJsonObject>

#include <atomic>

namespace farm {

class AccountStore;
class ApiRequest;
class ChangeFeed;
class HttpServer;
class ProjectStore;
class RequestGate;
struct RequestLimits;

/// Routes for sessions, the account and its projects.
class AccountRoutes
{
public:
    AccountRoutes(RequestGate& gate, AccountStore& accounts, ProjectStore& projects, ChangeFeed& feed,
        const RequestLimits& limits);

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
    ProjectStore& m_projects;
    ChangeFeed& m_feed;
    SignInLimits m_signIns;
    std::atomic<int> m_signInsAtOnce {0};
};

} // namespace farm
