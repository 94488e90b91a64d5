#include "farm/http/overview_routes.h"

#include "farm/base/local_time.h"
#include "farm/base/version.h"
#include "farm/http/api_json.h"
#include "farm/http/http_refusal.h"
#include "farm/http/metrics_text.h"
#include "farm/http/nodes_json.h"
#include "farm/http/request_gate.h"
#include "farm/jobs/farm_overview.h"
#include "farm/rendering/frames_in_work.h"
#include "farm/rendering/log_store.h"
#include "farm/rendering/node_board.h"

#include <QFileInfo>
#include <QStorageInfo>

#include <sys/resource.h>

namespace farm {

namespace {

constexpr int MostFailures = 50;
constexpr const char* StatusNames[] = {"waiting", "running", "paused", "pending", "finished", "deleted",
    "to_full_render", "failed", "arrears", "paused_in_arrears"};

FileAnswer LogAnswer(const std::shared_ptr<QFile>& file)
{
    if (!file)
        throw HttpRefusal {404, "not_found", QStringLiteral("the frame has no log yet")};
    return {file, file->size(), {}, "text/plain; charset=utf-8"};
}

int FrameOf(const ApiRequest& request)
{
    return request.PathPart(2).toInt();
}

std::int64_t DatabaseBytes(const QDir& folder)
{
    std::int64_t bytes = 0;
    for (const char* name : {"farm.sqlite", "farm.sqlite-wal"})
        bytes += QFileInfo(folder, QLatin1String(name)).size();
    return bytes;
}

double ProcessorSeconds()
{
    rusage usage {};
    ::getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& time) { return double(time.tv_sec) + double(time.tv_usec) / 1e6; };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

std::map<QString, int> FramesByHost(const std::map<FrameKey, FrameInWork>& frames)
{
    std::map<QString, int> hosts;
    for (const auto& frame : frames)
        ++hosts[frame.second.host];
    return hosts;
}

QJsonArray FailuresJson(const std::vector<FailedJob>& failures)
{
    QJsonArray list;
    for (const FailedJob& failure : failures)
        list.append(QJsonObject {{QStringLiteral("account"), failure.job.account},
            {QStringLiteral("job"), failure.job.id}, {QStringLiteral("name"), failure.job.name},
            {QStringLiteral("message"), failure.message}, {QStringLiteral("frame"), failure.frame},
            {QStringLiteral("time"), failure.endedAt == 0 ? QString() : TimeText(failure.endedAt)}});
    return list;
}

/// @param rendering is the number of frames that are being rendered, by account.
QJsonArray QueuesJson(const std::vector<AccountQueue>& queues, const std::map<QString, int>& rendering)
{
    QJsonArray list;
    for (const AccountQueue& queue : queues) {
        const auto frames = rendering.find(queue.account);
        list.append(QJsonObject {{QStringLiteral("account"), queue.account},
            {QStringLiteral("rendering"), frames != rendering.end() ? frames->second : 0},
            {QStringLiteral("running"), qint64(queue.running)},
            {QStringLiteral("waiting"), qint64(queue.waiting)},
            {QStringLiteral("paused"), qint64(queue.paused)},
            {QStringLiteral("arrears"), qint64(queue.inArrears)},
            {QStringLiteral("failed"), qint64(queue.failed)}});
    }
    return list;
}

} // namespace

OverviewRoutes::OverviewRoutes(const Dependencies& dependencies, const QDir& dataFolder)
    : m_deps(dependencies)
    , m_dataFolder(dataFolder)
{
}

void OverviewRoutes::AddTo(HttpServer& server)
{
    server.Get("/api/v1/admin/overview", [this](const ApiRequest& request) { return Show(request); });
    server.GetFile("/api/v1/admin/jobs/([^/]{1,64})/frames/([0-9]{1,9})/log",
        [this](const ApiRequest& request) { return SendLog(request); });
    server.GetFile("/api/v1/jobs/([^/]{1,64})/frames/([0-9]{1,9})/full-log",
        [this](const ApiRequest& request) { return SendOwnLog(request); });
    server.GetText("/metrics", "text/plain; version=0.0.4; charset=utf-8",
        [this, &server](const ApiRequest&) { return Metrics(server); });
}

void OverviewRoutes::RequireAdministrator(const ApiRequest& request)
{
    if (!m_deps.overview.IsAdministrator(m_deps.gate.Authorize(request)))
        throw HttpRefusal {403, "forbidden", QStringLiteral("the account is not an administrator")};
}

QJsonObject OverviewRoutes::Show(const ApiRequest& request)
{
    RequireAdministrator(request);
    const auto frames = m_deps.inWork.All();
    std::set<std::int64_t> keys;
    for (const auto& frame : frames)
        keys.insert(frame.first.job);
    const auto jobs = m_deps.overview.Jobs(keys);
    const std::int64_t now = Now();
    QJsonArray working;
    std::map<QString, int> byAccount;
    for (const auto& [frame, work] : frames) {
        const auto job = jobs.find(frame.job);
        if (job == jobs.end())
            continue;
        ++byAccount[job->second.account];
        working.append(QJsonObject {{QStringLiteral("account"), job->second.account},
            {QStringLiteral("job"), job->second.id}, {QStringLiteral("name"), job->second.name},
            {QStringLiteral("frame"), frame.number}, {QStringLiteral("host"), work.host},
            {QStringLiteral("seconds"), qint64(work.Seconds(now))},
            {QStringLiteral("percent"), PercentJson(work, frames.size())}});
    }
    const auto report = m_deps.nodes.Look(now);
    QJsonArray hindrances;
    for (const auto& [type, message] : m_deps.overview.HinderedTypes())
        hindrances.append(QJsonObject {{QStringLiteral("type"), type}, {QStringLiteral("message"), message}});
    const QStorageInfo disk(m_dataFolder);
    return DataJson(QJsonObject {
        {QStringLiteral("time"), TimeText(now)},
        {QStringLiteral("version"), Version()},
        {QStringLiteral("queues"), QueuesJson(m_deps.overview.Queues(), byAccount)},
        {QStringLiteral("hindrances"), hindrances},
        {QStringLiteral("working"), working},
        {QStringLiteral("failures"), FailuresJson(m_deps.overview.Failures(MostFailures))},
        {QStringLiteral("nodes"), NodesJson(report.value_or(NodeReport()).nodes, FramesByHost(frames))},
        {QStringLiteral("cluster"), ClusterJson(report)},
        {QStringLiteral("disk"),
            QJsonObject {{QStringLiteral("free"), disk.bytesAvailable()},
                {QStringLiteral("size"), disk.bytesTotal()},
                {QStringLiteral("database"), qint64(DatabaseBytes(m_dataFolder))}}},
    });
}

FileAnswer OverviewRoutes::SendLog(const ApiRequest& request)
{
    RequireAdministrator(request);
    return LogAnswer(m_deps.logs.Open(request.PathPart(), FrameOf(request)));
}

FileAnswer OverviewRoutes::SendOwnLog(const ApiRequest& request)
{
    const std::int64_t account = m_deps.gate.AuthorizeTransfer(request);
    return LogAnswer(m_deps.logs.OpenOwn(account, request.PathPart(), FrameOf(request)));
}

// Names of accounts and jobs are left out, because the reader needs no session.
QByteArray OverviewRoutes::Metrics(const HttpServer& server) const
{
    MetricsText text;
    const auto jobs = m_deps.overview.JobsByStatus();
    MetricsText::Values byStatus;
    for (std::size_t status = 0; status < std::size(StatusNames); ++status) {
        const auto count = jobs.find(int(status));
        byStatus.emplace_back(StatusNames[status], count != jobs.end() ? double(count->second) : 0);
    }
    MetricsText::Values byHost;
    for (const auto& [host, count] : FramesByHost(m_deps.inWork.All()))
        byHost.emplace_back(host.toStdString(), count);
    std::map<QString, int> byState;
    for (const RenderNode& node : m_deps.nodes.Look(Now()).value_or(NodeReport()).nodes)
        ++byState[node.state];
    MetricsText::Values nodes;
    for (const auto& [state, count] : byState)
        nodes.emplace_back(state.toStdString(), count);
    MetricsText::Values answers;
    for (int hundred = 2; hundred <= 5; ++hundred)
        answers.emplace_back(std::to_string(hundred) + "xx", double(server.Answers(hundred)));
    const QStorageInfo disk(m_dataFolder);
    text.Add("quillstar_build_info", "gauge", "The version of the farm.", {{Version().toStdString(), 1}},
        "version");
    text.Add("quillstar_jobs", "gauge", "Jobs of all accounts.", byStatus, "status");
    text.Add("quillstar_frames_rendering", "gauge", "Frames that are being rendered.", byHost, "node");
    text.Add("quillstar_nodes", "gauge", "Nodes of the cluster.", nodes, "state");
    text.Add("quillstar_http_answers_total", "counter", "Answers since the start.", answers, "status");
    text.Add("quillstar_disk_free_bytes", "gauge", "Free space for the data.", double(disk.bytesAvailable()));
    text.Add(
        "quillstar_disk_size_bytes", "gauge", "Size of the disk of the data.", double(disk.bytesTotal()));
    text.Add(
        "quillstar_database_bytes", "gauge", "Size of the database.", double(DatabaseBytes(m_dataFolder)));
    text.Add("process_cpu_seconds_total", "counter", "Processor time of the farm, without renderers.",
        ProcessorSeconds());
    return text.Result();
}

} // namespace farm
