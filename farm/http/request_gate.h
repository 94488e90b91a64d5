#pragma once

#include "farm/http/account_turns.h"
#include "farm/http/rate_limiter.h"

#include <algorithm>
#include <cstdint>
#include <thread>

namespace farm {

class AccountStore;
class ApiRequest;

/// Limits for clients.
struct RequestLimits
{
    Rate signInsByAddress {30, 0.5};
    Rate failedSignInsByNameAndAddress {10, 0.1};
    Rate requestsByAccount {200, 20};
    /// The limit for uploads, downloads and the requests of a submission.
    Rate transfersByAccount {1000, 200};
    /// Sign-ins beyond this limit are slowed down instead of refused.
    Rate failedSignInsByName {100, 0.2};
    std::chrono::milliseconds slowSignIn {2000};
    /// The most requests of an account that are served at a time, not counting transfers. Leaves processors to others.
    int requestsAtOnce = std::max(1, int(std::thread::hardware_concurrency()) / 2);
    /// The most requests of an account that wait for a turn; each occupies a thread.
    int requestsWaiting = 32;
};

/// Finds the account that a request comes from. Refuses requests without a session and requests beyond the limits.
class RequestGate
{
public:
    RequestGate(AccountStore& accounts, const RequestLimits& limits);

    /// The account whose session the request carries. It has a turn for as long as the request is being served.
    std::int64_t Authorize(const ApiRequest& request);
    /// The same for requests that count as transfers. Those that move bytes have no turns, since they would hold the others
    /// up for as long as a client or the disk takes.
    std::int64_t AuthorizeTransfer(const ApiRequest& request);
    /// The same for requests that count as transfers but keep the database busy instead.
    std::int64_t AuthorizeTransferInTurn(const ApiRequest& request);

private:
    void TakeTurn(const ApiRequest& request, std::int64_t account);
    std::int64_t Authorize(const ApiRequest& request, RateLimiter& limiter);

    AccountStore& m_accounts;
    RateLimiter m_requests;
    RateLimiter m_transfers;
    AccountTurns m_turns;
};

/// Refuses the request if `waitSeconds`, the result of RateLimiter::Take(), says that it came too soon.
void RefuseWhenTooMany(const std::optional<int>& waitSeconds);

} // namespace farm
