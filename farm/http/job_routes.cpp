#include "farm/http/job_routes.h"

#include "farm/base/errors.h"
#include "farm/base/local_time.h"
#include "farm/http/api_json.h"
#include "farm/http/http_server.h"
#include "farm/http/json_input.h"
#include "farm/http/read_conditions.h"
#include "farm/http/read_submission.h"
#include "farm/http/request_gate.h"
#include "farm/jobs/job_store.h"
#include "farm/jobs/job_submission.h"

#include <QJsonDocument>

namespace farm {

namespace {

constexpr std::int64_t LargestPage = 1'000'000'000;
constexpr std::int64_t LargestPageSize = 1000;
constexpr std::int64_t DefaultPageSize = 18;
constexpr int MostIds = 1000;

// Queries contain only text; in a body the same value may be a text, a number or an object.
QByteArray PlainText(const QJsonValue& value)
{
    if (value.isObject())
        return QJsonDocument(value.toObject()).toJson(QJsonDocument::Compact);
    if (value.isArray() || value.isBool())
        throw InvalidInput("page, pageSize or conditions cannot be read");
    return value.toVariant().toString().toUtf8();
}

} // namespace

JobRoutes::JobRoutes(RequestGate& gate, JobStore& jobs, JobActions& actions, JobSubmission& submission)
    : m_gate(gate)
    , m_jobs(jobs)
    , m_actions(actions)
    , m_submission(submission)
{
}

void JobRoutes::AddTo(HttpServer& server)
{
    const auto act = [this](JobAction action) {
        return [this, action](const ApiRequest& request) { return Act(action, request); };
    };
    server.Get("/api/v1/jobs", [this](const ApiRequest& request) { return List(request); });
    server.Post("/api/v1/jobs", [this](const ApiRequest& request) { return Submit(request); });
    server.Post("/api/v1/jobs/search", [this](const ApiRequest& request) { return Search(request); });
    server.Get("/api/v1/jobs/([^/]{1,64})", [this](const ApiRequest& request) { return Show(request); });
    server.Post("/api/v1/jobs/stop", act(JobAction::Stop));
    server.Post("/api/v1/jobs/recover", act(JobAction::Recover));
    server.Post("/api/v1/jobs/restart", act(JobAction::Restart));
    server.Post("/api/v1/jobs/delete", act(JobAction::Delete));
    server.Post("/api/v1/jobs/full-render", act(JobAction::FullRender));
    server.Post("/api/v1/jobs/priority", [this](const ApiRequest& request) { return SetPriority(request); });
}

QJsonObject JobRoutes::List(const ApiRequest& request)
{
    const std::int64_t account = m_gate.Authorize(request);
    return DataJson(JobPageJson(m_jobs.List(account, ReadJobConditions(request.Query("conditions")),
        WholeNumber(request.Query("page"), "page", 1, 1, LargestPage),
        WholeNumber(request.Query("pageSize"), "pageSize", DefaultPageSize, 1, LargestPageSize))));
}

QJsonObject JobRoutes::Search(const ApiRequest& request)
{
    const std::int64_t account = m_gate.Authorize(request);
    const QJsonObject body = request.Body();
    return DataJson(JobPageJson(
        m_jobs.List(account, ReadJobConditions(PlainText(body.value(QLatin1String("conditions")))),
            WholeNumber(PlainText(body.value(QLatin1String("page"))), "page", 1, 1, LargestPage),
            WholeNumber(PlainText(body.value(QLatin1String("pageSize"))), "pageSize", DefaultPageSize, 1,
                LargestPageSize))));
}

QJsonObject JobRoutes::Show(const ApiRequest& request)
{
    const std::int64_t account = m_gate.Authorize(request);
    const QString id = request.PathPart();
    const QJsonObject info = JobInfoJson(m_jobs.Find(account, id), m_jobs.Plan(account, id));
    return DataJson(QJsonObject {{QStringLiteral("jobDatas"), info}});
}

QJsonObject JobRoutes::Act(JobAction action, const ApiRequest& request)
{
    const std::int64_t account = m_gate.Authorize(request);
    const QStringList refused = m_actions.Apply(
        action, account, RequiredTexts(request.Body(), "ids", MostIds), Now(), request.Address());
    return DataJson(QJsonObject {{QStringLiteral("notAllowedJobs"), QJsonArray::fromStringList(refused)}});
}

QJsonObject JobRoutes::SetPriority(const ApiRequest& request)
{
    const std::int64_t account = m_gate.Authorize(request);
    const QJsonObject body = request.Body();
    m_actions.SetPriority(account, RequiredTexts(body, "ids", MostIds),
        RequiredInteger(body, "priority", LowestPriority, HighestPriority), Now(), request.Address());
    return DataJson(QJsonObject {{QStringLiteral("notAllowedJobs"), QJsonArray()}});
}

QJsonObject JobRoutes::Submit(const ApiRequest& request)
{
    const std::int64_t account = m_gate.AuthorizeTransferInTurn(request);
    const AddedJob job
        = m_submission.Submit(account, ReadSubmission(request.Body()), Now(), request.Address());
    return DataJson(QJsonObject {{QStringLiteral("job_id"), job.id},
        {QStringLiteral("job_increasement"), QString::number(job.number)}});
}

} // namespace farm
