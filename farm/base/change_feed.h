#pragma once

#include <QSet>
#include <QString>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>

namespace farm {

/// Changes of an account since the subscriber's last Wait().
struct AccountChanges
{
    /// At most this many jobs are named; when more have changed, only `list` tells of them.
    static constexpr int MostJobs = 100;

    /// The ids of jobs whose records have changed.
    QSet<QString> jobs = {};
    /// Jobs were added or deleted or have another status, so that lists may hold others than before.
    bool list = false;
    /// The balance has changed.
    bool money = false;

    bool IsEmpty() const { return jobs.isEmpty() && !list && !money; }
    void Add(const AccountChanges& more);
};

/// Passes changes of accounts on to whoever has subscribed to them. Thread-safe. Announcing never waits for a subscriber, and
/// a slow one costs no more memory than one AccountChanges.
class ChangeFeed
{
public:
    class Subscription
    {
    public:
        /// Use ChangeFeed::Subscribe().
        Subscription(ChangeFeed& feed, std::int64_t account);
        ~Subscription();
        Subscription(const Subscription&) = delete;
        Subscription& operator=(const Subscription&) = delete;

        /// Waits for changes, or for a call of Wake(), but no longer than `longest`. Changes that follow each other within
        /// `Gap` are returned together. Returns what has changed since the last call, or nothing once the feed is closed.
        std::optional<AccountChanges> Wait(std::chrono::milliseconds longest);

    private:
        friend class ChangeFeed;

        void Add(const AccountChanges& changes);

        ChangeFeed& m_feed;
        const std::int64_t m_account;
        std::condition_variable m_wake;
        AccountChanges m_changes;
        bool m_isWoken = false;
        std::chrono::steady_clock::time_point m_lastChanges;
    };

    /// A client should show a change within two seconds, but each event costs it processor time.
    static constexpr std::chrono::milliseconds Gap {1700};

    void Announce(std::int64_t account, const AccountChanges& changes);
    void AnnounceToAll(const AccountChanges& changes);
    /// Makes the account's subscribers return from Wait() without any changes.
    void Wake(std::int64_t account);

    /// The subscription ends with the object. The feed must outlive it.
    std::unique_ptr<Subscription> Subscribe(std::int64_t account);
    int SubscriberCount() const;
    int SubscriberCount(std::int64_t account) const;

    /// Ends all waiting; later calls of Wait() return at once.
    void Close();

private:
    mutable std::mutex m_mutex;
    std::multimap<std::int64_t, Subscription*> m_subscriptions;
    bool m_isClosed = false;
};

} // namespace farm
