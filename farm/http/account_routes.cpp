#include "farm/http/account_routes.h"

#include "farm/accounts/account_store.h"
#include "farm/accounts/project_store.h"
#include "farm/base/change_feed.h"
#include "farm/base/local_time.h"
#include "farm/http/api_json.h"
#include "farm/http/http_refusal.h"
#include "farm/http/http_server.h"
#include "farm/http/json_input.h"
#include "farm/http/request_gate.h"

#include <spdlog/spdlog.h>

namespace farm {

namespace {

constexpr int LongestName = 256;
constexpr int LongestPassword = 1024;
constexpr int DaysByDefault = 30;
constexpr int MostDays = 366;
// Passwords are compared one at a time, which takes a tenth of a second each, and each waiting sign-in occupies a
// thread of the server.
constexpr int MostSignInsAtOnce = 32;

/// A place in the queue of sign-ins, held for as long as this object lives. Throws HttpRefusal when none is free.
class SignInPlace
{
public:
    explicit SignInPlace(std::atomic<int>& taken)
        : m_taken(taken)
    {
        constexpr int RetryAfter = 5; // s
        if (++m_taken <= MostSignInsAtOnce)
            return;
        --m_taken;
        throw HttpRefusal {503, "busy", QStringLiteral("too many users are signing in at once"), RetryAfter};
    }
    ~SignInPlace() { --m_taken; }
    SignInPlace(const SignInPlace&) = delete;
    SignInPlace& operator=(const SignInPlace&) = delete;

private:
    std::atomic<int>& m_taken;
};

} // namespace

AccountRoutes::AccountRoutes(RequestGate& gate, AccountStore& accounts, ProjectStore& projects,
    ChangeFeed& feed, const RequestLimits& limits)
    : m_gate(gate)
    , m_accounts(accounts)
    , m_projects(projects)
    , m_feed(feed)
    , m_signIns(limits)
{
}

void AccountRoutes::AddTo(HttpServer& server)
{
    server.Post("/api/v1/session", [this](const ApiRequest& request) { return SignIn(request); });
    server.Delete("/api/v1/session", [this](const ApiRequest& request) { return SignOut(request); });
    server.Get("/api/v1/account", [this](const ApiRequest& request) { return ShowAccount(request); });
    server.Get(
        "/api/v1/account/spending", [this](const ApiRequest& request) { return ShowSpending(request); });
    server.Get("/api/v1/projects", [this](const ApiRequest& request) { return ListProjects(request); });
}

QJsonObject AccountRoutes::SignIn(const ApiRequest& request)
{
    const QJsonObject body = request.Body();
    const QString name = RequiredText(body, "username", LongestName);
    const QString password = RequiredText(body, "password", LongestPassword);
    const QString address = request.Address();
    m_signIns.Admit(name, address.toLatin1(), m_accounts.HasSessionAt(name, address, Now()));
    const auto session = [&] {
        const SignInPlace place(m_signInsAtOnce);
        return m_accounts.SignIn(name, password, Now(), address);
    }();
    if (!session) {
        // The typed name stays out of the log, since it may be a password typed into the wrong field.
        spdlog::warn("a sign-in from {} was refused", address.toStdString());
        throw HttpRefusal {401, "unauthorized", QStringLiteral("the name or the password is wrong")};
    }
    m_signIns.Succeeded(name, address.toLatin1());
    return SessionJson(*session, m_accounts.SessionSeconds());
}

QJsonObject AccountRoutes::SignOut(const ApiRequest& request)
{
    const QString token = request.Token();
    const auto account = m_accounts.AccountOf(token, Now());
    m_accounts.SignOut(token, Now(), request.Address());
    // The session's event streams then notice its end and close.
    if (account)
        m_feed.Wake(*account);
    return {};
}

QJsonObject AccountRoutes::ShowAccount(const ApiRequest& request)
{
    return DataJson(AccountJson(m_accounts.Info(m_gate.Authorize(request))));
}

QJsonObject AccountRoutes::ListProjects(const ApiRequest& request)
{
    return DataJson(ProjectsJson(m_projects.OfAccount(m_gate.Authorize(request))));
}

QJsonObject AccountRoutes::ShowSpending(const ApiRequest& request)
{
    const std::int64_t account = m_gate.Authorize(request);
    const int days = int(WholeNumber(request.Query("days"), "days", DaysByDefault, 1, MostDays));
    return DataJson(SpendingJson(m_accounts.Spending(account, QDate::currentDate(), days)));
}

} // namespace farm
