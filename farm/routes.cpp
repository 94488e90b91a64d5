#include "routes.h"

#include "account_store.h"
#include "api_json.h"
#include "bad_input.h"
#include "http_server.h"
#include "job_store.h"
#include "local_time.h"
#include "version.h"

#include <QJsonDocument>

#include <algorithm>

namespace farm {

namespace {

constexpr int longestName = 256;
constexpr int longestPassword = 1024;
constexpr std::int64_t largestPage = 1'000'000'000;
constexpr std::int64_t largestPageSize = 1000;
constexpr std::int64_t usualPageSize = 18;
constexpr int mostIds = 1000;

QJsonObject Data(const QJsonValue& value)
{
    return {{QStringLiteral("data"), value}};
}

QString RequiredText(const QJsonObject& body, const char* key, int longest)
{
    const QJsonValue value = body.value(QLatin1String(key));
    if (!value.isString() || value.toString().size() > longest)
        throw BadInput(std::string(key) + " is missing, no text or too long");
    return value.toString();
}

QStringList RequiredIds(const QJsonObject& body)
{
    const QJsonValue value = body.value(QLatin1String("ids"));
    const QJsonArray list = value.toArray();
    if (!value.isArray() || list.size() > mostIds)
        throw BadInput("ids is missing, no list or too long");
    QStringList ids;
    for (const QJsonValue& id : list) {
        if (!id.isString())
            throw BadInput("ids are texts");
        ids.append(id.toString());
    }
    return ids;
}

ApiRefusal NoSuchJob()
{
    return {404, "not_found", QStringLiteral("there is no such job")};
}

void RefuseWhenTooMany(const std::optional<int>& wait)
{
    if (wait)
        throw ApiRefusal {
            429, "too_many_requests", QStringLiteral("too many requests, try again later"), *wait};
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

Routes::Routes(AccountStore& accounts, JobStore& jobs, JobActions& actions, const RequestLimits& limits)
    : m_accounts(accounts)
    , m_jobs(jobs)
    , m_actions(actions)
    , m_signInsByAddress(limits.signInsByAddress)
    , m_failedSignInsByName(limits.failedSignInsByName)
    , m_requestsByAccount(limits.requestsByAccount)
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

std::int64_t Routes::Authorize(const ApiRequest& request)
{
    const auto account = m_accounts.AccountOf(request.Token(), Now());
    if (!account)
        throw ApiRefusal {401, "unauthorized", QStringLiteral("sign in first")};
    RefuseWhenTooMany(m_requestsByAccount.Take(std::to_string(*account)));
    return *account;
}

QJsonObject Routes::SignIn(const ApiRequest& request)
{
    const QJsonObject body = request.Body();
    const QString name = RequiredText(body, "username", longestName);
    const QString password = RequiredText(body, "password", longestPassword);
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
    return Data(AccountJson(m_accounts.Info(Authorize(request))));
}

QJsonObject Routes::ListProjects(const ApiRequest& request)
{
    return Data(ProjectsJson(m_accounts.Projects(Authorize(request))));
}

QJsonObject Routes::ListJobs(const ApiRequest& request)
{
    const std::int64_t account = Authorize(request);
    return Data(JobPageJson(m_jobs.List(account, ParseJobConditions(request.Query("conditions")),
        NumberIn(request.Query("page"), 1, largestPage),
        NumberIn(request.Query("pageSize"), usualPageSize, largestPageSize))));
}

QJsonObject Routes::SearchJobs(const ApiRequest& request)
{
    const std::int64_t account = Authorize(request);
    const QJsonObject body = request.Body();
    return Data(JobPageJson(
        m_jobs.List(account, ParseJobConditions(PlainText(body.value(QLatin1String("conditions")))),
            NumberIn(PlainText(body.value(QLatin1String("page"))), 1, largestPage),
            NumberIn(PlainText(body.value(QLatin1String("pageSize"))), usualPageSize, largestPageSize))));
}

QJsonObject Routes::ShowJob(const ApiRequest& request)
{
    const auto job = m_jobs.Find(Authorize(request), request.PathPart());
    if (!job)
        throw NoSuchJob();
    return Data(QJsonObject {{QStringLiteral("jobDatas"), JobInfoJson(*job)}});
}

QJsonObject Routes::Act(JobAction action, const ApiRequest& request)
{
    const std::int64_t account = Authorize(request);
    const auto refused = m_actions.Do(action, account, RequiredIds(request.Body()), Now());
    if (!refused)
        throw NoSuchJob();
    return Data(QJsonObject {{QStringLiteral("notAllowedJobs"), QJsonArray::fromStringList(*refused)}});
}

} // namespace farm
