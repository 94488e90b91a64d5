#include "farm/http/http_api.h"

#include "farm/base/version.h"
#include "farm/http/page_routes.h"

namespace farm {

namespace {

QJsonObject Health(const ApiRequest&)
{
    return {
        {QStringLiteral("name"), QStringLiteral("quillstar-farmd")}, {QStringLiteral("version"), Version()}};
}

} // namespace

HttpApi::HttpApi(const Dependencies& dependencies, const RequestLimits& limits, const QStringList& proxies)
    : m_gate(dependencies.accounts, limits)
    , m_accounts(m_gate, dependencies.accounts, dependencies.projects, dependencies.feed, limits)
    , m_uploads(m_gate, dependencies.contents, dependencies.uploads)
    , m_storage(m_gate, dependencies.database, dependencies.contents, dependencies.terms)
    , m_jobs(m_gate, dependencies.jobs, dependencies.actions, dependencies.submission)
    , m_frames(m_gate, dependencies.jobs, dependencies.frames, dependencies.inWork, dependencies.pictures)
    , m_events(m_gate, dependencies.accounts, dependencies.jobs, dependencies.feed)
    , m_overview({m_gate, dependencies.overview, dependencies.inWork, dependencies.nodes, dependencies.logs},
          dependencies.dataFolder)
    , m_server(TrustedProxies(proxies))
{
    m_server.Get("/api/v1/health", Health);
    m_accounts.AddTo(m_server);
    m_uploads.AddTo(m_server);
    m_storage.AddTo(m_server);
    m_jobs.AddTo(m_server);
    m_frames.AddTo(m_server);
    m_events.AddTo(m_server);
    m_overview.AddTo(m_server);
    AddPageTo(m_server);
}

} // namespace farm
