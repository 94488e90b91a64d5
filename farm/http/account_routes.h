#pragma once

#include "farm/http/rate_limiter.h"
#include "farm/jobs/job_actions.h"

#include <QJsonObject>

namespace farm {

class AccountStore;
class ApiRequest;
class HttpServer;
class JobStore;
class RequestGate;

struct RequestLimits
{
    Rate signInsByAddress {30, 0.5};
    Rate failedSignInsByName {10, 0.1};
    Rate requestsByAccount {200, 20};
    /// Those that carry the bytes of files, and the steps of a submission.
    Rate transfersByAccount {1000, 200};
};

/// The HTTP interface of the farm: reads requests, asks the stores and writes their answers.
class Routes
{
public:
    Routes(RequestGate& gate, AccountStore& accounts, JobStore& jobs, JobActions& actions,
        const RequestLimits& limits);

    /// The routes must outlive the server.
    void AddTo(HttpServer& server);

private:
    QJsonObject SignIn(const ApiRequest& request);
    QJsonObject SignOut(const ApiRequest& request);
    QJsonObject ShowAccount(const ApiRequest& request);
    QJsonObject ListProjects(const ApiRequest& request);
    QJsonObject ListJobs(const ApiRequest& request);
    QJsonObject SearchJobs(const ApiRequest& request);
    QJsonObject ShowJob(const ApiRequest& request);
    QJsonObject Act(JobAction action, const ApiRequest& request);

    RequestGate& m_gate;
    AccountStore& m_accounts;
    JobStore& m_jobs;
    JobActions& m_actions;
    RateLimiter m_signInsByAddress;
    RateLimiter m_failedSignInsByName;
};

} // namespace farm
