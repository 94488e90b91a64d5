#include "farm/http/account_routes.h"

#include "farm/accounts/account_store.h"
#include "farm/base/errors.h"
#include "farm/base/local_time.h"
#include "farm/base/version.h"
#include "farm/http/api_json.h"
#include "farm/http/http_server.h"
#include "farm/http/json_input.h"
#include "farm/http/request_gate.h"
#include "farm/jobs/job_store.h"

#include <QJsonDocument>

#include <algorithm>

namespace farm {

namespace {

constexpr int LongestName = 256;
constexpr int LongestPassword = 1024;
constexpr std::int64_t LargestPage = 1'000'000'000;
constexpr std::int64_t LargestPageSize = 1000;
constexpr std::int64_t DefaultPageSize = 18;
constexpr int MostIds = 1000;

ApiRefusal NoSuchJob()
{
    return {404, "not_found", QStringLiteral("there is no such job")};
}

std::int64_t NumberIn(const QByteArray& text, std::int64_t otherwise, std::int64_t largest)
{
    if (text.isEmpty())
        return otherwise;
    bool ok = false;
    const std::int64_t number = text.toLongLong(&ok);
    if (!ok)
        throw BadInput("page and pageSize are whole numbers");
    return std::clamp<std::int64_t>(number, 1, largest);
}

// What a query holds as text may stand in a body as text, as a number or as an object.
QByteArray PlainText(const QJsonValue& value)
{
    if (value.isObject())
        return QJsonDocument(value.toObject()).toJson(QJsonDocument::Compact);
    if (value.isArray() || value.isBool())
        throw BadInput("page, pageSize or conditions cannot be read");
    return value.toVariant().toString().toUtf8();
}

} // namespace

Routes::Routes(RequestGate& gate, AccountStore& accounts, JobStore& jobs, JobActions& actions,
    const RequestLimits& limits)
    : m_gate(gate)
    , m_accounts(accounts)
    , m_jobs(jobs)
    , m_actions(actions)
    , m_signInsByAddress(limits.signInsByAddress)
    , m_failedSignInsByName(limits.failedSignInsByName)
{
}

void Routes::AddTo(HttpServer& server)
{
    const auto route = [this](QJsonObject (Routes::*method)(const ApiRequest&)) {
        return [this, method](const ApiRequest& request) { return (this->*method)(request); };
    };
    server.Get("/api/v1/health", [](const ApiRequest&) {
        return QJsonObject {{QStringLiteral("name"), QStringLiteral("quillstar-farmd")},
            {QStringLiteral("version"), Version()}};
    });
    server.Post("/api/v1/session", route(&Routes::SignIn));
    server.Delete("/api/v1/session", route(&Routes::SignOut));
    server.Get("/api/v1/account", route(&Routes::ShowAccount));
    server.Get("/api/v1/projects", route(&Routes::ListProjects));
    server.Get("/api/v1/jobs", route(&Routes::ListJobs));
    server.Post("/api/v1/jobs/search", route(&Routes::SearchJobs));
    server.Get("/api/v1/jobs/([^/]{1,64})", route(&Routes::ShowJob));
    const auto act = [this](JobAction action) {
        return [this, action](const ApiRequest& request) { return Act(action, request); };
    };
    server.Post("/api/v1/jobs/stop", act(JobAction::Stop));
    server.Post("/api/v1/jobs/recover", act(JobAction::Recover));
    server.Post("/api/v1/jobs/restart", act(JobAction::Restart));
    server.Post("/api/v1/jobs/delete", act(JobAction::Delete));
    server.Post("/api/v1/jobs/full-render", act(JobAction::FullRender));
}

QJsonObject Routes::SignIn(const ApiRequest& request)
{
    const QJsonObject body = request.Body();
    const QString name = RequiredText(body, "username", LongestName);
    const QString password = RequiredText(body, "password", LongestPassword);
    const std::string nameKey = name.toCaseFolded().toStdString();
    RefuseWhenTooMany(m_signInsByAddress.Take(request.Address().toStdString()));
    RefuseWhenTooMany(m_failedSignInsByName.Take(nameKey));
    const auto session = m_accounts.SignIn(name, password, Now());
    if (!session)
        throw ApiRefusal {401, "unauthorized", QStringLiteral("the name or the password is wrong")};
    m_failedSignInsByName.GiveBack(nameKey);
    return SessionJson(*session, m_accounts.SessionSeconds());
}

QJsonObject Routes::SignOut(const ApiRequest& request)
{
    m_accounts.SignOut(request.Token());
    return {};
}

QJsonObject Routes::ShowAccount(const ApiRequest& request)
{
    return DataJson(AccountJson(m_accounts.Info(m_gate.Authorize(request))));
}

QJsonObject Routes::ListProjects(const ApiRequest& request)
{
    return DataJson(ProjectsJson(m_accounts.Projects(m_gate.Authorize(request))));
}

QJsonObject Routes::ListJobs(const ApiRequest& request)
{
    const std::int64_t account = m_gate.Authorize(request);
    return DataJson(JobPageJson(m_jobs.List(account, ParseJobConditions(request.Query("conditions")),
        NumberIn(request.Query("page"), 1, LargestPage),
        NumberIn(request.Query("pageSize"), DefaultPageSize, LargestPageSize))));
}

QJsonObject Routes::SearchJobs(const ApiRequest& request)
{
    const std::int64_t account = m_gate.Authorize(request);
    const QJsonObject body = request.Body();
    return DataJson(JobPageJson(
        m_jobs.List(account, ParseJobConditions(PlainText(body.value(QLatin1String("conditions")))),
            NumberIn(PlainText(body.value(QLatin1String("page"))), 1, LargestPage),
            NumberIn(PlainText(body.value(QLatin1String("pageSize"))), DefaultPageSize, LargestPageSize))));
}

QJsonObject Routes::ShowJob(const ApiRequest& request)
{
    const std::int64_t account = m_gate.Authorize(request);
    const auto job = m_jobs.Find(account, request.PathPart());
    const auto plan = m_jobs.Plan(account, request.PathPart());
    if (!job || !plan)
        throw NoSuchJob();
    return DataJson(QJsonObject {{QStringLiteral("jobDatas"), JobInfoJson(*job, *plan)}});
}

QJsonObject Routes::Act(JobAction action, const ApiRequest& request)
{
    const std::int64_t account = m_gate.Authorize(request);
    const auto refused = m_actions.Do(action, account, RequiredTexts(request.Body(), "ids", MostIds), Now());
    if (!refused)
        throw NoSuchJob();
    return DataJson(QJsonObject {{QStringLiteral("notAllowedJobs"), QJsonArray::fromStringList(*refused)}});
}

} // namespace farm
