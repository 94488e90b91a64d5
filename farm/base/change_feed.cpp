#include "farm/base/change_feed.h"

#include <utility>

namespace farm {

void AccountChanges::Add(const AccountChanges& more)
{
    jobs += more.jobs;
    list |= more.list;
    money |= more.money;
    if (jobs.size() > MostJobs) {
        jobs.clear();
        list = true;
    }
}

ChangeFeed::Subscription::Subscription(ChangeFeed& feed, std::int64_t account)
    : m_feed(feed)
    , m_account(account)
    , m_lastChanges(std::chrono::steady_clock::now() - Gap)
{
    const std::lock_guard lock(m_feed.m_mutex);
    m_feed.m_subscriptions.emplace(account, this);
}

ChangeFeed::Subscription::~Subscription()
{
    const std::lock_guard lock(m_feed.m_mutex);
    const auto [first, last] = m_feed.m_subscriptions.equal_range(m_account);
    for (auto entry = first; entry != last; ++entry) {
        if (entry->second == this) {
            m_feed.m_subscriptions.erase(entry);
            return;
        }
    }
}

std::optional<AccountChanges> ChangeFeed::Subscription::Wait(std::chrono::milliseconds longest)
{
    const auto end = std::chrono::steady_clock::now() + longest;
    std::unique_lock lock(m_feed.m_mutex);
    m_wake.wait_until(lock, end, [this] { return m_feed.m_isClosed || m_isWoken || !m_changes.IsEmpty(); });
    if (!m_isWoken && !m_changes.IsEmpty())
        m_wake.wait_until(lock, m_lastChanges + Gap, [this] { return m_feed.m_isClosed || m_isWoken; });
    if (m_feed.m_isClosed)
        return std::nullopt;
    m_isWoken = false;
    if (!m_changes.IsEmpty())
        m_lastChanges = std::chrono::steady_clock::now();
    return std::exchange(m_changes, {});
}

void ChangeFeed::Subscription::Add(const AccountChanges& changes)
{
    // A subscriber that waits for the end of the gap is not woken again.
    if (m_changes.IsEmpty())
        m_wake.notify_one();
    m_changes.Add(changes);
}

void ChangeFeed::Announce(std::int64_t account, const AccountChanges& changes)
{
    const std::lock_guard lock(m_mutex);
    const auto [first, last] = m_subscriptions.equal_range(account);
    for (auto entry = first; entry != last; ++entry)
        entry->second->Add(changes);
}

void ChangeFeed::AnnounceToAll(const AccountChanges& changes)
{
    const std::lock_guard lock(m_mutex);
    for (const auto& entry : m_subscriptions)
        entry.second->Add(changes);
}

void ChangeFeed::Wake(std::int64_t account)
{
    const std::lock_guard lock(m_mutex);
    const auto [first, last] = m_subscriptions.equal_range(account);
    for (auto entry = first; entry != last; ++entry) {
        entry->second->m_isWoken = true;
        entry->second->m_wake.notify_one();
    }
}

std::unique_ptr<ChangeFeed::Subscription> ChangeFeed::Subscribe(std::int64_t account)
{
    return std::make_unique<Subscription>(*this, account);
}

int ChangeFeed::SubscriberCount() const
{
    const std::lock_guard lock(m_mutex);
    return static_cast<int>(m_subscriptions.size());
}

int ChangeFeed::SubscriberCount(std::int64_t account) const
{
    const std::lock_guard lock(m_mutex);
    return static_cast<int>(m_subscriptions.count(account));
}

void ChangeFeed::Close()
{
    const std::lock_guard lock(m_mutex);
    m_isClosed = true;
    for (const auto& entry : m_subscriptions)
        entry.second->m_wake.notify_one();
}

} // namespace farm
