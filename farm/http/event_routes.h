#pragma once

#include "farm/base/change_feed.h"
#include "farm/http/http_server.h"

#include <memory>
#include <mutex>

namespace farm {

class AccountStore;
class RequestGate;

/// The route that announces changes of an account while they happen.
class EventRoutes
{
public:
    EventRoutes(RequestGate& gate, AccountStore& accounts, ChangeFeed& feed);

    /// The routes must outlive the server.
    void AddTo(HttpServer& server);

private:
    EventStream Open(const ApiRequest& request);
    std::shared_ptr<ChangeFeed::Subscription> Admit(std::int64_t account);

    RequestGate& m_gate;
    AccountStore& m_accounts;
    ChangeFeed& m_feed;
    std::mutex m_admitting;
};

} // namespace farm
