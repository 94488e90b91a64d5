#pragma once

#include "farm/http/rate_limiter.h"

#include <QJsonObject>

#include <cstdint>

namespace farm {

class AccountStore;
class ApiRequest;

/// Lets requests in: finds their accounts, and refuses those without a session and those that are too many.
class RequestGate
{
public:
    /// `requests` and `transfers` are each for an account.
    RequestGate(AccountStore& accounts, Rate requests, Rate transfers);

    /// The account whose session the request belongs to.
    std::int64_t Authorize(const ApiRequest& request);
    /// As well, for what carries the bytes of files and for the steps of a submission.
    std::int64_t AuthorizeTransfer(const ApiRequest& request);

private:
    std::int64_t Authorize(const ApiRequest& request, RateLimiter& limiter);

    AccountStore& m_accounts;
    RateLimiter m_requests;
    RateLimiter m_transfers;
};

/// Refuses a request when there is a time to wait.
void RefuseWhenTooMany(const std::optional<int>& waitSeconds);

} // namespace farm
