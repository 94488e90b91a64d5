#pragma once

#include "farm/base/change_feed.h"
#include "farm/http/http_server.h"

#include <memory>
#include <mutex>

namespace farm {

class AccountStore;
class JobStore;
class RequestGate;

/// The route that announces changes of an account as they happen.
class EventRoutes
{
public:
    EventRoutes(RequestGate& gate, AccountStore& accounts, JobStore& jobs, ChangeFeed& feed);

    /// The routes must outlive the server.
    void AddTo(HttpServer& server);

private:
    EventStream Open(const ApiRequest& request);
    QByteArray EventOf(std::int64_t account, const AccountChanges& changes);
    std::shared_ptr<ChangeFeed::Subscription> Admit(std::int64_t account);

    RequestGate& m_gate;
    AccountStore& m_accounts;
    JobStore& m_jobs;
    ChangeFeed& m_feed;
    std::mutex m_admitting;
};

} // namespace farm
