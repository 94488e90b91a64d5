#include "farm/http/storage_routes.h"

#include "farm/base/local_time.h"
#include "farm/http/api_json.h"
#include "farm/http/http_server.h"
#include "farm/http/json_input.h"
#include "farm/http/request_gate.h"
#include "farm/jobs/account_storage.h"
#include "farm/uploads/content_store.h"

namespace farm {

namespace {

constexpr int JobsByDefault = 100;
constexpr int MostJobs = 1000;

} // namespace

StorageRoutes::StorageRoutes(
    RequestGate& gate, Database& database, ContentStore& contents, const AccountTerms& terms)
    : m_gate(gate)
    , m_database(database)
    , m_contents(contents)
    , m_terms(terms)
{
}

void StorageRoutes::AddTo(HttpServer& server)
{
    server.Get("/api/v1/account/storage", [this](const ApiRequest& request) { return Show(request); });
    server.Delete("/api/v1/account/storage", [this](const ApiRequest& request) { return Free(request); });
}

QJsonObject StorageRoutes::Show(const ApiRequest& request)
{
    const std::int64_t account = m_gate.Authorize(request);
    const int mostJobs = int(WholeNumber(request.Query("jobs"), "jobs", JobsByDefault, 1, MostJobs));
    const std::int64_t quota = m_database.Read(
        [&](SQLite::Database& connection) { return m_terms.QuotaFor(connection, account); });
    return DataJson(StorageJson(StorageOf(m_database, account, mostJobs), quota));
}

QJsonObject StorageRoutes::Free(const ApiRequest& request)
{
    const std::int64_t freed = m_contents.FreeUnneededOf(m_gate.Authorize(request), Now(), request.Address());
    return DataJson(QJsonObject {{QStringLiteral("freed"), qint64(freed)}});
}

} // namespace farm
