#include "farm/http/upload_routes.h"

#include "farm/base/local_time.h"
#include "farm/http/api_json.h"
#include "farm/base/errors.h"
#include "farm/http/http_server.h"
#include "farm/http/json_input.h"
#include "farm/http/request_gate.h"
#include "farm/jobs/job_submission.h"
#include "farm/uploads/content_store.h"
#include "farm/uploads/upload_store.h"
#include "storage/durable_file.h"

namespace farm {

namespace {

constexpr int MostChecksums = 1000;
constexpr int ChecksumDigits = 64;

void RequireChecksum(const QString& text)
{
    if (!storage::IsChecksum(text))
        throw BadInput("a checksum has 64 lower-case hexadecimal digits");
}

// JSON has no integers; those below 2^53 are exact.
std::int64_t RequiredSize(const QJsonObject& body)
{
    constexpr double Largest = 9007199254740992.0;
    const QJsonValue value = body.value(QLatin1String("size"));
    const double number = value.toDouble();
    if (!value.isDouble() || !(number >= 1 && number < Largest) || number != double(std::int64_t(number)))
        throw BadInput("size is missing or no number of bytes");
    return std::int64_t(number);
}

QJsonObject UploadData(const Upload& upload)
{
    return DataJson(UploadJson(upload, HttpServer::LargestChunk));
}

} // namespace

SubmissionRoutes::SubmissionRoutes(
    RequestGate& gate, ContentStore& contents, UploadStore& uploads, JobSubmission& submission)
    : m_gate(gate)
    , m_contents(contents)
    , m_uploads(uploads)
    , m_submission(submission)
{
}

void SubmissionRoutes::AddTo(HttpServer& server)
{
    const auto route = [this](QJsonObject (SubmissionRoutes::*method)(const ApiRequest&)) {
        return [this, method](const ApiRequest& request) { return (this->*method)(request); };
    };
    server.Post("/api/v1/contents/known", route(&SubmissionRoutes::ListKnown));
    server.Post("/api/v1/uploads", route(&SubmissionRoutes::BeginUpload));
    server.Get("/api/v1/uploads/([^/]{1,64})", route(&SubmissionRoutes::ShowUpload));
    server.Put("/api/v1/uploads/([^/]{1,64})", route(&SubmissionRoutes::AppendToUpload));
    server.Post("/api/v1/uploads/([^/]{1,64})/unpack", route(&SubmissionRoutes::Unpack));
    server.Post("/api/v1/jobs", route(&SubmissionRoutes::Submit));
}

QJsonObject SubmissionRoutes::ListKnown(const ApiRequest& request)
{
    const std::int64_t account = m_gate.AuthorizeTransfer(request);
    const QStringList checksums = RequiredTexts(request.Body(), "checksums", MostChecksums);
    for (const QString& checksum : checksums)
        RequireChecksum(checksum);
    return DataJson(QJsonObject {
        {QStringLiteral("known"), QJsonArray::fromStringList(m_contents.KnownTo(account, checksums))}});
}

QJsonObject SubmissionRoutes::BeginUpload(const ApiRequest& request)
{
    const std::int64_t account = m_gate.AuthorizeTransfer(request);
    const QJsonObject body = request.Body();
    const QString checksum = RequiredText(body, "checksum", ChecksumDigits);
    RequireChecksum(checksum);
    return UploadData(m_uploads.Begin(account, checksum, RequiredSize(body), Now()));
}

QJsonObject SubmissionRoutes::ShowUpload(const ApiRequest& request)
{
    return UploadData(m_uploads.Find(m_gate.AuthorizeTransfer(request), request.PathPart()));
}

QJsonObject SubmissionRoutes::AppendToUpload(const ApiRequest& request)
{
    const std::int64_t account = m_gate.AuthorizeTransfer(request);
    bool ok = false;
    const std::int64_t offset = request.Query("offset").toLongLong(&ok);
    if (!ok || offset < 0)
        throw BadInput("offset is missing or no number of bytes");
    return UploadData(m_uploads.Append(account, request.PathPart(), offset, request.Bytes(), Now()));
}

QJsonObject SubmissionRoutes::Unpack(const ApiRequest& request)
{
    const Upload upload = m_uploads.Unpack(m_gate.AuthorizeTransfer(request), request.PathPart(), Now());
    return DataJson(QJsonObject {{QStringLiteral("files"), upload.files}});
}

QJsonObject SubmissionRoutes::Submit(const ApiRequest& request)
{
    const AddedJob job = m_submission.Submit(m_gate.AuthorizeTransfer(request), request.Body(), Now());
    return DataJson(QJsonObject {{QStringLiteral("job_id"), job.id},
        {QStringLiteral("job_increasement"), QString::number(job.number)}});
}

} // namespace farm
