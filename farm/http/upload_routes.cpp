#include "farm/http/upload_routes.h"

#include "farm/base/errors.h"
#include "farm/base/local_time.h"
#include "farm/http/api_json.h"
#include "farm/http/http_server.h"
#include "farm/http/json_input.h"
#include "farm/http/request_gate.h"
#include "farm/uploads/content_store.h"
#include "farm/uploads/upload_store.h"
#include "storage/checksum.h"

namespace farm {

namespace {

constexpr int MostChecksums = 1000;
constexpr int ChecksumDigits = 64;

void RequireChecksum(const QString& text)
{
    if (!storage::IsChecksum(text))
        throw InvalidInput("a checksum has 64 lower-case hexadecimal digits");
}

// Numbers in JSON are doubles, in which integers below 2^53 are exact.
std::int64_t RequiredSize(const QJsonObject& body)
{
    constexpr double Largest = 9007199254740992.0;
    const QJsonValue value = body.value(QLatin1String("size"));
    const double number = value.toDouble();
    if (!value.isDouble() || !(number >= 1 && number < Largest) || number != double(std::int64_t(number)))
        throw InvalidInput("size is missing or is not a number of bytes");
    return std::int64_t(number);
}

QJsonObject UploadData(const Upload& upload)
{
    return DataJson(UploadJson(upload, HttpServer::LargestChunk));
}

} // namespace

UploadRoutes::UploadRoutes(RequestGate& gate, ContentStore& contents, UploadStore& uploads)
    : m_gate(gate)
    , m_contents(contents)
    , m_uploads(uploads)
{
}

void UploadRoutes::AddTo(HttpServer& server)
{
    server.Post("/api/v1/contents/known", [this](const ApiRequest& request) { return ListKnown(request); });
    server.Post("/api/v1/uploads", [this](const ApiRequest& request) { return Begin(request); });
    server.Get("/api/v1/uploads/([^/]{1,64})", [this](const ApiRequest& request) { return Show(request); });
    server.Put("/api/v1/uploads/([^/]{1,64})", [this](const ApiRequest& request) { return Append(request); });
    server.Post(
        "/api/v1/uploads/([^/]{1,64})/unpack", [this](const ApiRequest& request) { return Unpack(request); });
    server.Delete(
        "/api/v1/uploads/([^/]{1,64})", [this](const ApiRequest& request) { return Remove(request); });
}

QJsonObject UploadRoutes::ListKnown(const ApiRequest& request)
{
    const std::int64_t account = m_gate.AuthorizeTransfer(request);
    const QStringList checksums = RequiredTexts(request.Body(), "checksums", MostChecksums);
    for (const QString& checksum : checksums)
        RequireChecksum(checksum);
    const QStringList known = m_contents.KnownTo(account, checksums);
    m_contents.Touch(account, known, Now());
    return DataJson(QJsonObject {{QStringLiteral("known"), QJsonArray::fromStringList(known)}});
}

QJsonObject UploadRoutes::Begin(const ApiRequest& request)
{
    const std::int64_t account = m_gate.AuthorizeTransfer(request);
    const QJsonObject body = request.Body();
    const QString checksum = RequiredText(body, "checksum", ChecksumDigits);
    RequireChecksum(checksum);
    return UploadData(m_uploads.Begin(account, checksum, RequiredSize(body), Now()));
}

QJsonObject UploadRoutes::Show(const ApiRequest& request)
{
    return UploadData(m_uploads.Find(m_gate.AuthorizeTransfer(request), request.PathPart()));
}

QJsonObject UploadRoutes::Append(const ApiRequest& request)
{
    const std::int64_t account = m_gate.AuthorizeTransfer(request);
    bool ok = false;
    const std::int64_t offset = request.Query("offset").toLongLong(&ok);
    if (!ok || offset < 0)
        throw InvalidInput("offset is missing or is not a number of bytes");
    return UploadData(m_uploads.Append(account, request.PathPart(), offset, request.Bytes(), Now()));
}

QJsonObject UploadRoutes::Unpack(const ApiRequest& request)
{
    const Upload upload = m_uploads.Unpack(m_gate.AuthorizeTransfer(request), request.PathPart(), Now());
    return DataJson(QJsonObject {{QStringLiteral("files"), PackedFilesJson(upload.files)}});
}

QJsonObject UploadRoutes::Remove(const ApiRequest& request)
{
    m_uploads.Remove(m_gate.AuthorizeTransfer(request), request.PathPart(), Now(), request.Address());
    return {};
}

} // namespace farm
