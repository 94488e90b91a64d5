#include "host/farmclient/connection_state.h"

#include "host/farmclient/farm_numbers.h"

#include <algorithm>

namespace {

/// Whether the farm itself has answered, rather than a proxy or nothing at all.
bool IsOfFarm(const FarmFault& fault)
{
    constexpr int BadGateway = 502;
    constexpr int GatewayTimeout = 504;
    return fault.status >= 0 && fault.status != HttpStatus::ProxyAuthenticationRequired
        && fault.status != BadGateway && fault.status != GatewayTimeout;
}

bool IsJobList(const Exchange& exchange)
{
    return exchange.target.startsWith("/jobs?") || exchange.target == "/jobs/search";
}

/// The client expects these refusals and handles them by itself.
bool IsRoutine(const Exchange& exchange)
{
    switch (exchange.fault.status) {
    case HttpStatus::Unauthorized:
    case HttpStatus::Conflict:
    case HttpStatus::PreconditionFailed:
    case HttpStatus::RangeNotSatisfiable:
        return true;
    case HttpStatus::NotFound:
        return exchange.verb != "POST" || !exchange.target.startsWith("/jobs");
    default:
        return false;
    }
}

} // namespace

void ConnectionState::Apply(const Exchange& exchange)
{
    const bool isOutage = !IsOfFarm(exchange.fault);
    if (!isOutage)
        m_failingSince = {};
    else if (!m_failingSince.isValid())
        m_failingSince = exchange.time;
    if (exchange.fault.status == 0 && IsJobList(exchange))
        m_listTime = exchange.time;
    if (exchange.fault.status != 0 && !IsRoutine(exchange))
        Remember(exchange, isOutage);
}

void ConnectionState::ConfirmList(const QDateTime& time)
{
    if (m_listTime.isValid())
        m_listTime = time;
}

/// Failures with the same cause in one outage share an entry, whatever was requested; so do consecutive refusals of the
/// same request.
void ConnectionState::Remember(const Exchange& exchange, bool isOutage)
{
    const auto isSame = [&](const Entry& entry) {
        if (!(entry.latest.fault == exchange.fault))
            return false;
        return isOutage ? entry.latest.time >= m_failingSince
                        : entry.latest.verb == exchange.verb && entry.latest.Path() == exchange.Path();
    };
    const auto end = isOutage ? m_entries.end() : m_entries.begin() + std::min(1, m_entries.size());
    const auto found = std::find_if(m_entries.begin(), end, isSame);
    Entry entry {exchange};
    if (found != end) {
        entry.count = found->count + 1;
        m_entries.erase(found);
    }
    m_entries.prepend(entry);
    if (m_entries.size() > MostEntries)
        m_entries.removeLast();
    m_isRead = false;
}

ConnectionState::Phase ConnectionState::PhaseAt(const QDateTime& now) const
{
    if (!m_failingSince.isValid())
        return Phase::Connected;
    return m_failingSince.msecsTo(now) < GraceTime ? Phase::TryingAgain : Phase::Unreachable;
}

const ConnectionState::Entry* ConnectionState::News(const QDateTime& now) const
{
    if (m_isRead || m_failingSince.isValid() || m_entries.isEmpty())
        return nullptr;
    const Entry& entry = m_entries.constFirst();
    return IsOfFarm(entry.latest.fault) && entry.latest.time.msecsTo(now) < RecentTime ? &entry : nullptr;
}

QDateTime ConnectionState::NextChange(const QDateTime& now) const
{
    if (PhaseAt(now) == Phase::TryingAgain)
        return m_failingSince.addMSecs(GraceTime);
    const Entry* news = News(now);
    return news ? news->latest.time.addMSecs(RecentTime) : QDateTime();
}
