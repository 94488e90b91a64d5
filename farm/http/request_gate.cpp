#include "farm/http/request_gate.h"

#include "farm/accounts/account_store.h"
#include "farm/base/local_time.h"
#include "farm/http/http_refusal.h"
#include "farm/http/http_server.h"

namespace farm {

RequestGate::RequestGate(AccountStore& accounts, const RequestLimits& limits)
    : m_accounts(accounts)
    , m_requests(limits.requestsByAccount)
    , m_transfers(limits.transfersByAccount)
    , m_turns(limits.requestsAtOnce, limits.requestsWaiting)
{
}

std::int64_t RequestGate::Authorize(const ApiRequest& request)
{
    const std::int64_t account = Authorize(request, m_requests);
    TakeTurn(request, account);
    return account;
}

std::int64_t RequestGate::AuthorizeTransfer(const ApiRequest& request)
{
    return Authorize(request, m_transfers);
}

std::int64_t RequestGate::AuthorizeTransferInTurn(const ApiRequest& request)
{
    const std::int64_t account = Authorize(request, m_transfers);
    TakeTurn(request, account);
    return account;
}

void RequestGate::TakeTurn(const ApiRequest& request, std::int64_t account)
{
    const AccountTurns::Turn turn = m_turns.Take(account);
    if (!turn)
        RefuseWhenTooMany(1);
    request.Keep(turn);
}

std::int64_t RequestGate::Authorize(const ApiRequest& request, RateLimiter& limiter)
{
    const auto account = m_accounts.AccountOf(request.Token(), Now());
    if (!account)
        throw HttpRefusal {401, "unauthorized", QStringLiteral("sign in first")};
    RefuseWhenTooMany(limiter.Take(std::to_string(*account)));
    return *account;
}

void RefuseWhenTooMany(const std::optional<int>& waitSeconds)
{
    if (waitSeconds)
        throw HttpRefusal {429, "too_many_requests",
            QStringLiteral("there were too many requests; try again later"), *waitSeconds};
}

} // namespace farm
