#include "farm/http/event_routes.h"

#include "farm/accounts/account_store.h"
#include "farm/base/local_time.h"
#include "farm/http/api_json.h"
#include "farm/http/http_refusal.h"
#include "farm/http/request_gate.h"
#include "farm/jobs/job_store.h"

#include <QJsonDocument>

#include <chrono>
#include <utility>

namespace farm {

namespace {

constexpr std::chrono::seconds Heartbeat {5};
constexpr int MostStreamsPerAccount = 64;
constexpr int MostRecords = 20;
constexpr int RetryAfter = 30; // s

// Comments of the event-stream format. The first one shows the client at once that the stream is open.
const QByteArray Comment = QByteArrayLiteral(":\n\n");

} // namespace

EventRoutes::EventRoutes(RequestGate& gate, AccountStore& accounts, JobStore& jobs, ChangeFeed& feed)
    : m_gate(gate)
    , m_accounts(accounts)
    , m_jobs(jobs)
    , m_feed(feed)
{
}

void EventRoutes::AddTo(HttpServer& server)
{
    server.GetEvents("/api/v1/events", [this](const ApiRequest& request) { return Open(request); });
}

EventStream EventRoutes::Open(const ApiRequest& request)
{
    const std::int64_t account = m_gate.Authorize(request);
    return [this, account, subscription = Admit(account), token = request.Token(), isOpen = false]() mutable {
        if (!std::exchange(isOpen, true))
            return Comment;
        const auto changes = subscription->Wait(Heartbeat);
        // The session may have ended since the last event.
        if (!changes || !m_accounts.AccountOf(token, Now()))
            return QByteArray();
        return changes->IsEmpty() ? Comment : EventOf(account, *changes);
    };
}

QByteArray EventRoutes::EventOf(std::int64_t account, const AccountChanges& changes)
{
    QJsonObject event = ChangesJson(changes);
    if (changes.money)
        event.insert(QStringLiteral("account"), AccountJson(m_accounts.Info(account)));
    // When lists may contain other jobs, the client has to ask for its list and gets the records anyway.
    if (!changes.list && changes.jobs.size() <= MostRecords) {
        QJsonArray records;
        for (const QString& job : changes.jobs)
            records.append(JobJson(m_jobs.Find(account, job)));
        event.insert(QStringLiteral("records"), records);
    }
    return "data: " + QJsonDocument(event).toJson(QJsonDocument::Compact) + "\n\n";
}

std::shared_ptr<ChangeFeed::Subscription> EventRoutes::Admit(std::int64_t account)
{
    const std::lock_guard lock(m_admitting);
    if (m_feed.SubscriberCount(account) >= MostStreamsPerAccount)
        throw HttpRefusal {429, "too_many_requests",
            QStringLiteral("the account has too many open streams of events"), RetryAfter};
    if (m_feed.SubscriberCount() >= HttpServer::MostStreams)
        throw HttpRefusal {
            503, "busy", QStringLiteral("the farm has too many open streams of events"), RetryAfter};
    return m_feed.Subscribe(account);
}

} // namespace farm
