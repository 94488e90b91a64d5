#pragma once

#include "farm/http/rate_limiter.h"

#include <QByteArray>
#include <QString>

#include <atomic>
#include <chrono>

namespace farm {

struct RequestLimits;

/// Keeps passwords from being guessed, but lets nobody lock a colleague out. Wrong passwords are counted by name and
/// address together, so that they cost others nothing. Guesses from many addresses at once are counted by name and only
/// slowed down, except at addresses where the account is signed in.
class SignInLimits
{
public:
    explicit SignInLimits(const RequestLimits& limits);

    /// Call it before a sign-in, which counts as failed until Succeeded(). Throws HttpRefusal when there were too many
    /// at this address. May wait some seconds.
    /// @param address is that of PlainAddress().
    /// @param isKnown says whether the account is signed in at the address.
    void Admit(const QString& name, const QByteArray& address, bool isKnown);
    void Succeeded(const QString& name, const QByteArray& address);

private:
    void SlowDown();

    RateLimiter m_byAddress;
    RateLimiter m_failedByNameAndAddress;
    RateLimiter m_failedByName;
    std::chrono::milliseconds m_pause;
    std::atomic<int> m_waiting {0};
};

} // namespace farm
