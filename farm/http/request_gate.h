#pragma once

#include "farm/http/rate_limiter.h"

#include <cstdint>

namespace farm {

class AccountStore;
class ApiRequest;

/// Rate limits for clients.
struct RequestLimits
{
    Rate signInsByAddress {30, 0.5};
    Rate failedSignInsByNameAndAddress {10, 0.1};
    Rate requestsByAccount {200, 20};
    /// Requests that carry bytes of files, and those that a submission consists of.
    Rate transfersByAccount {1000, 200};
    /// Beyond it sign-ins are slowed down instead of refused.
    Rate failedSignInsByName {100, 0.2};
    std::chrono::milliseconds slowSignIn {2000};
};

/// Finds the account that a request comes from. Refuses requests without a session and requests beyond the limits.
class RequestGate
{
public:
    RequestGate(AccountStore& accounts, const RequestLimits& limits);

    /// The account whose session the request carries.
    std::int64_t Authorize(const ApiRequest& request);
    /// The same for requests that count as transfers.
    std::int64_t AuthorizeTransfer(const ApiRequest& request);

private:
    std::int64_t Authorize(const ApiRequest& request, RateLimiter& limiter);

    AccountStore& m_accounts;
    RateLimiter m_requests;
    RateLimiter m_transfers;
};

/// Refuses the request if `waitSeconds`, the result of RateLimiter::Take(), says that it came too soon.
void RefuseWhenTooMany(const std::optional<int>& waitSeconds);

} // namespace farm
