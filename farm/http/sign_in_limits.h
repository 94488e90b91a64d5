#pragma once

#include "farm/http/rate_limiter.h"

#include <QByteArray>
#include <QString>

#include <chrono>
#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace farm {

struct RequestLimits;

/// Keeps passwords from being guessed, but lets nobody lock a colleague out. Wrong passwords are counted by name and
/// address together, so that they cost others nothing. Guesses from many addresses at once are counted by name and only
/// slowed down, except at addresses where the account is signed in. When there are too many for all of them to be
/// slowed down, only the addresses that have failed with the name before are refused.
class SignInLimits
{
public:
    explicit SignInLimits(const RequestLimits& limits);

    /// Call it before a sign-in, which counts as failed until Succeeded(). Throws HttpRefusal when there were too many
    /// at this address, and logs that once a minute. May wait some seconds.
    /// @param address is a result of PlainAddress().
    /// @param isKnown says whether the account is signed in at the address.
    void Admit(const QString& name, const QByteArray& address, bool isKnown);
    void Succeeded(const QString& name, const QByteArray& address);

private:
    /// The seconds after which the address may try again; nothing when it may try now.
    std::optional<int> Refusal(const QString& name, const QByteArray& address, bool isKnown);
    /// Returns false at once when too many others wait.
    bool Wait(const std::string& name);

    RateLimiter m_byAddress;
    RateLimiter m_failedByNameAndAddress;
    RateLimiter m_firstByNameAndAddress;
    RateLimiter m_failedByName;
    RateLimiter m_logged;
    std::chrono::milliseconds m_pause;
    std::mutex m_mutex;
    int m_waiting = 0;
    std::map<std::string, int> m_waitingByName;
};

} // namespace farm
