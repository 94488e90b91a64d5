#include "farm/http/sign_in_limits.h"

#include "farm/http/client_address.h"
#include "farm/http/request_gate.h"

#include <spdlog/spdlog.h>

#include <thread>

namespace farm {

namespace {

// Each waiting sign-in occupies a server thread. The limit per name keeps one name from taking them all.
constexpr int MostWaiting = 32;
constexpr int MostWaitingWithName = 4;
// An address that has failed with a name is remembered for ten minutes.
constexpr Rate FirstFailure {1, 1.0 / 600};
constexpr Rate OncePerMinute {1, 1.0 / 60};

std::string NameKey(const QString& name)
{
    return name.toCaseFolded().toStdString();
}

std::string PairKey(const QString& name, const QByteArray& address)
{
    return NetworkOf(address).toStdString() + ' ' + NameKey(name);
}

} // namespace

SignInLimits::SignInLimits(const RequestLimits& limits)
    : m_byAddress(limits.signInsByAddress)
    , m_failedByNameAndAddress(limits.failedSignInsByNameAndAddress)
    , m_firstByNameAndAddress(FirstFailure)
    , m_failedByName(limits.failedSignInsByName)
    , m_logged(OncePerMinute)
    , m_pause(limits.slowSignIn)
{
}

void SignInLimits::Admit(const QString& name, const QByteArray& address, bool isKnown)
{
    const auto refusal = Refusal(name, address, isKnown);
    if (refusal && !m_logged.Take(NetworkOf(address).toStdString()))
        spdlog::warn(
            "sign-ins from {} are refused for now, because too many were tried there", address.toStdString());
    RefuseWhenTooMany(refusal);
}

// Names are counted as they were typed. Counting a name and its e-mail address together would reveal that both belong
// to one account.
std::optional<int> SignInLimits::Refusal(const QString& name, const QByteArray& address, bool isKnown)
{
    constexpr int RetryAfter = 5; // s
    if (const auto seconds = m_byAddress.Take(NetworkOf(address).toStdString()))
        return seconds;
    if (const auto seconds = m_failedByNameAndAddress.Take(PairKey(name, address)))
        return seconds;
    const bool hasFailedHere = m_firstByNameAndAddress.Take(PairKey(name, address)).has_value();
    const bool isSlow = m_failedByName.Take(NameKey(name)).has_value() && !isKnown;
    // An address that has not failed may be the owner's other computer. Comparing passwords already limits the rate.
    const bool isRefused = isSlow && !Wait(NameKey(name)) && hasFailedHere;
    return isRefused ? std::optional(RetryAfter) : std::nullopt;
}

bool SignInLimits::Wait(const std::string& name)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    const auto waiting = m_waitingByName.try_emplace(name, 0).first;
    if (m_waiting >= MostWaiting || waiting->second >= MostWaitingWithName) {
        if (waiting->second == 0)
            m_waitingByName.erase(waiting);
        return false;
    }
    ++m_waiting;
    ++waiting->second;
    lock.unlock();
    std::this_thread::sleep_for(m_pause);
    lock.lock();
    --m_waiting;
    if (--waiting->second == 0)
        m_waitingByName.erase(waiting);
    return true;
}

void SignInLimits::Succeeded(const QString& name, const QByteArray& address)
{
    m_failedByNameAndAddress.GiveBack(PairKey(name, address));
    m_firstByNameAndAddress.GiveBack(PairKey(name, address));
    m_failedByName.GiveBack(NameKey(name));
}

} // namespace farm
