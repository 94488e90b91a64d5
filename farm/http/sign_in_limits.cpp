#include "farm/http/sign_in_limits.h"

#include "farm/http/client_address.h"
#include "farm/http/request_gate.h"

#include <thread>

namespace farm {

namespace {

// Each that waits occupies a thread of the server.
constexpr int MostWaiting = 8;

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
    , m_failedByName(limits.failedSignInsByName)
    , m_pause(limits.slowSignIn)
{
}

// Names are counted as they were typed. Counting a name and its e-mail address together would tell that both belong to
// an account.
void SignInLimits::Admit(const QString& name, const QByteArray& address, bool isKnown)
{
    RefuseWhenTooMany(m_byAddress.Take(NetworkOf(address).toStdString()));
    RefuseWhenTooMany(m_failedByNameAndAddress.Take(PairKey(name, address)));
    if (m_failedByName.Take(NameKey(name)) && !isKnown)
        SlowDown();
}

void SignInLimits::SlowDown()
{
    constexpr int RetryAfter = 5; // s
    const bool isFull = ++m_waiting > MostWaiting;
    if (!isFull)
        std::this_thread::sleep_for(m_pause);
    --m_waiting;
    RefuseWhenTooMany(isFull ? std::optional(RetryAfter) : std::nullopt);
}

void SignInLimits::Succeeded(const QString& name, const QByteArray& address)
{
    m_failedByNameAndAddress.GiveBack(PairKey(name, address));
    m_failedByName.GiveBack(NameKey(name));
}

} // namespace farm
