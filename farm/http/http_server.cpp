#include "farm/http/http_server.h"

#include "farm/base/errors.h"
#include "farm/http/api_json.h"
#include "farm/http/byte_range.h"
#include "farm/http/http_refusal.h"
#include "farm/http/request_server.h"
#include "farm/http/timed_stream.h"
#include "storage/disk_full.h"
#include "json/read_object.h"

#include <QJsonDocument>

#include <httplib.h>
#include <spdlog/spdlog.h>

#include <algorithm>
#include <initializer_list>
#include <netinet/tcp.h>
#include <optional>

namespace farm {

namespace {

constexpr std::size_t LargestBody = std::size_t {1024} * 1024; // bytes
// There are many threads, because they mostly wait for the database and for the disk. Streams of events get additional
// ones, so that they never keep a request waiting.
constexpr std::size_t MostThreads = 64 + HttpServer::MostStreams;
constexpr unsigned int PeerTimeout = 30000; // ms
// The library's own backlog is five connections. In a burst, further ones are dropped, and their clients try again only
// after a second.
constexpr int Backlog = 1024;

void Answer(httplib::Response& response, int status, const QJsonObject& body)
{
    response.status = status;
    response.set_content(
        QJsonDocument(body).toJson(QJsonDocument::Compact).toStdString(), "application/json");
}

void Refuse(httplib::Response& response, const HttpRefusal& refusal)
{
    if (refusal.retryAfterSeconds > 0)
        response.set_header("Retry-After", std::to_string(refusal.retryAfterSeconds));
    Answer(response, refusal.status, ErrorJson(refusal.word, refusal.message));
}

HttpRefusal InternalError(int status = 500)
{
    return {status, "internal", QStringLiteral("the farm could not handle the request")};
}

HttpRefusal DiskFull()
{
    constexpr int Pause = 30; // s
    return {507, "disk_full", QStringLiteral("the farm's disk is full; try again later"), Pause};
}

// The library decompresses bodies, and reads bodies of unknown length, without any limit on their size.
bool HasUnwantedHeader(const httplib::Request& request)
{
    for (const char* header : {"Transfer-Encoding", "Content-Encoding"}) {
        if (request.has_header(header))
            return true;
    }
    // For other methods, too, it reads bodies of any size.
    const auto& methods = {"GET", "HEAD", "POST", "PUT", "DELETE"};
    if (std::find(methods.begin(), methods.end(), request.method) == methods.end())
        return true;
    return (request.method == "POST" || request.method == "PUT") && !request.has_header("Content-Length");
}

// The values of all headers of this name, joined as if they were one.
QByteArray Headers(const httplib::Request& request, const char* name)
{
    QByteArrayList values;
    for (std::size_t index = 0; index < request.get_header_value_count(name); ++index)
        values.append(QByteArray::fromStdString(request.get_header_value(name, index)));
    return values.join(',');
}

httplib::Server::HandlerResponse CheckHeaders(const httplib::Request& request, httplib::Response& response)
{
    // The library would cut the ranges out of every answer, even an error, without checking that they are inside it.
    // Casting is safe: the request that the library passes is not a constant object.
    const_cast<httplib::Request&>(request).ranges.clear();
    if (!HasUnwantedHeader(request))
        return httplib::Server::HandlerResponse::Unhandled;
    Refuse(response,
        {400, "bad_request",
            QStringLiteral("send the body uncompressed, unchunked and with a Content-Length")});
    return httplib::Server::HandlerResponse::Handled;
}

// The library answers some errors itself, without a body; this gives them the same form as all others.
void CompleteFailure(const httplib::Request&, httplib::Response& response)
{
    if (!response.body.empty())
        return;
    if (response.status == 404)
        Refuse(response, {404, "not_found", QStringLiteral("there is nothing under this path")});
    else if (response.status == 413)
        Refuse(response, {413, "too_large", QStringLiteral("the request is too large")});
    else if (response.status == 416)
        Refuse(response, {416, "bad_range", QStringLiteral("the range cannot be read")});
    else if (response.status < 500)
        Refuse(response, {response.status, "bad_request", QStringLiteral("the request cannot be read")});
    else
        Refuse(response, InternalError(response.status));
}

// Sends the range of the file's bytes, or the whole file.
void AnswerFile(httplib::Response& response, const FileAnswer& answer, const std::optional<ByteRange>& range)
{
    const ByteRange part = range.value_or(ByteRange {0, answer.size});
    response.status = range ? 206 : 200;
    if (!answer.checksum.isEmpty()) {
        response.set_header("ETag", '"' + answer.checksum.toStdString() + '"');
        response.set_header("Accept-Ranges", "bytes");
    }
    response.set_header("X-Content-Type-Options", "nosniff");
    if (range)
        response.set_header("Content-Range", ContentRange(part, answer.size));
    response.set_content_provider(static_cast<std::size_t>(part.length), answer.type,
        [file = answer.file, part](std::size_t, std::size_t, httplib::DataSink&) {
            TimedStream::Current().LeaveFile(file, part.offset, part.length);
            return false; // the library has nothing left to do
        });
}

void AnswerEvents(httplib::Response& response, const EventStream& next)
{
    response.set_header("Cache-Control", "no-store");
    // Asks a proxy in front of the farm to pass each event on at once.
    response.set_header("X-Accel-Buffering", "no");
    response.set_chunked_content_provider("text/event-stream", [next](std::size_t, httplib::DataSink& sink) {
        TimedStream::Current().WaitForClient();
        try {
            const QByteArray bytes = next();
            if (!bytes.isEmpty())
                return sink.write(bytes.constData(), static_cast<std::size_t>(bytes.size()));
        } catch (const std::exception& error) {
            spdlog::error("a stream of events has ended: {}", error.what());
        }
        sink.done();
        return true;
    });
}

QByteArray Header(const httplib::Request& request, const char* name)
{
    return QByteArray::fromStdString(request.get_header_value(name));
}

void ServeFile(const httplib::Request& request, httplib::Response& response, const FileAnswer& answer)
{
    const QByteArray tag = '"' + answer.checksum.toLatin1() + '"';
    if (request.has_header("If-Match") && !NamesTag(Header(request, "If-Match"), tag))
        throw HttpRefusal {412, "changed", QStringLiteral("the file is not the one that If-Match names")};
    // If-Range asks for the whole file when it has changed since the client fetched a part of it.
    const bool wantsRange = request.has_header("Range") && !answer.checksum.isEmpty()
        && (!request.has_header("If-Range") || Header(request, "If-Range") == tag);
    std::optional<ByteRange> range;
    if (wantsRange) {
        range = ParseRange(Header(request, "Range"), answer.size);
        if (!range) {
            response.set_header("Content-Range", "bytes */" + std::to_string(answer.size));
            throw HttpRefusal {416, "bad_range", QStringLiteral("the file has no such range")};
        }
    }
    AnswerFile(response, answer, range);
}

// Turns any exception that `answer` throws into an error answer.
template <typename Answering>
httplib::Server::Handler Wrap(std::size_t largest, Answering answer)
{
    return
        [answer = std::move(answer), largest](const httplib::Request& request, httplib::Response& response) {
            try {
                if (request.body.size() > largest)
                    throw TooLarge("the request is too large");
                answer(request, response);
            } catch (const HttpRefusal& refusal) {
                Refuse(response, refusal);
            } catch (const Refusal& refusal) {
                Refuse(response, HttpRefusalFor(refusal));
            } catch (const std::exception& error) {
                spdlog::error("{} {} failed: {}", request.method, request.path, error.what());
                Refuse(response, storage::IsDiskFull(error) ? DiskFull() : InternalError());
            }
        };
}

httplib::Server::Handler WrapJson(std::size_t largest, HttpServer::Handler handler)
{
    return Wrap(largest,
        [handler = std::move(handler)](const httplib::Request& request, httplib::Response& response) {
            Answer(response, 200, handler(ApiRequest(request)));
        });
}

} // namespace

ApiRequest::ApiRequest(const httplib::Request& request)
    : m_request(request)
{
}

QString ApiRequest::Address() const
{
    return QString::fromStdString(m_request.remote_addr);
}

QString ApiRequest::Token() const
{
    const QString header = QString::fromStdString(m_request.get_header_value("Authorization"));
    const QLatin1String scheme("Bearer ");
    return header.startsWith(scheme, Qt::CaseInsensitive) ? header.mid(scheme.size()).trimmed() : QString();
}

QString ApiRequest::PathPart(int group) const
{
    return QString::fromStdString(m_request.matches[static_cast<std::size_t>(group)]);
}

QByteArray ApiRequest::Query(const char* name) const
{
    return QByteArray::fromStdString(m_request.get_param_value(name));
}

QJsonObject ApiRequest::Body() const
{
    const JsonRead body = ReadJsonObject(QByteArray::fromStdString(m_request.body));
    if (body.fault)
        throw InvalidInput(std::string("the body ") + body.fault);
    return body.object;
}

QByteArray ApiRequest::Bytes() const
{
    return QByteArray::fromStdString(m_request.body);
}

HttpServer::HttpServer(const TrustedProxies& proxies)
    : m_server(std::make_unique<RequestServer>(MostThreads))
    , m_proxies(proxies)
{
    SetUp();
}

HttpServer::~HttpServer()
{
    Stop();
}

void HttpServer::SetUp()
{
    m_server->set_payload_max_length(LargestChunk);
    // The library's default, SO_REUSEPORT, would let two servers share a port.
    m_server->set_socket_options([this](socket_t socket) {
        m_listener = socket;
        const int yes = 1;
        ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof(yes));
        // Accepted connections inherit it. A client that has gone without a word must not keep its stream of events open.
        ::setsockopt(socket, IPPROTO_TCP, TCP_USER_TIMEOUT, &PeerTimeout, sizeof(PeerTimeout));
    });
    m_server->set_pre_routing_handler([this](const httplib::Request& request, httplib::Response& response) {
        // Casting is safe: the request that the library passes is not a constant object.
        const_cast<httplib::Request&>(request).remote_addr
            = m_proxies
                  .ClientOf(QByteArray::fromStdString(request.remote_addr),
                      Headers(request, "X-Forwarded-For"), Headers(request, "Forwarded"))
                  .toStdString();
        return CheckHeaders(request, response);
    });
    m_server->set_error_handler(CompleteFailure);
    m_server->set_logger([this](const httplib::Request& request, const httplib::Response& response) {
        ++m_answers.at(std::size_t(std::clamp(response.status / 100, 0, 5)));
        spdlog::debug("{} {} {} {}", request.remote_addr, request.method, request.path, response.status);
    });
}

void HttpServer::Get(const char* path, Handler handler)
{
    m_server->Get(path, WrapJson(LargestBody, std::move(handler)));
}

void HttpServer::Post(const char* path, Handler handler)
{
    m_server->Post(path, WrapJson(LargestBody, std::move(handler)));
}

void HttpServer::Put(const char* path, Handler handler)
{
    m_server->Put(path, WrapJson(LargestChunk, std::move(handler)));
}

void HttpServer::GetFile(const char* path, FileHandler handler)
{
    m_server->Get(path,
        Wrap(LargestBody,
            [handler = std::move(handler)](const httplib::Request& request, httplib::Response& response) {
                ServeFile(request, response, handler(ApiRequest(request)));
            }));
}

void HttpServer::GetText(const char* path, const char* type, TextHandler handler)
{
    m_server->Get(path,
        Wrap(LargestBody,
            [handler = std::move(handler), type](
                const httplib::Request& request, httplib::Response& response) {
                response.set_content(handler(ApiRequest(request)).toStdString(), type);
                response.set_header("Content-Security-Policy",
                    "default-src 'none'; script-src 'self'; style-src 'self'; connect-src 'self'; "
                    "base-uri 'none'; form-action 'none'; frame-ancestors 'none'");
                response.set_header("X-Content-Type-Options", "nosniff");
                response.set_header("Referrer-Policy", "no-referrer");
                response.set_header("Cache-Control", "no-cache");
            }));
}

void HttpServer::GetEvents(const char* path, EventHandler handler)
{
    m_server->Get(path,
        Wrap(LargestBody,
            [handler = std::move(handler)](const httplib::Request& request, httplib::Response& response) {
                AnswerEvents(response, handler(ApiRequest(request)));
            }));
}

void HttpServer::Delete(const char* path, Handler handler)
{
    m_server->Delete(path, WrapJson(LargestBody, std::move(handler)));
}

std::int64_t HttpServer::Answers(int hundred) const
{
    return m_answers.at(std::size_t(hundred));
}

int HttpServer::Start(const QString& address, int port)
{
    const std::string host = address.toStdString();
    const bool bound
        = port == 0 ? (port = m_server->bind_to_any_port(host)) > 0 : m_server->bind_to_port(host, port);
    if (!bound)
        throw std::runtime_error("cannot listen on " + host);
    // The library is listening already; calling listen() again only lengthens the queue.
    ::listen(m_listener, Backlog);
    m_thread = std::thread([this] { m_server->listen_after_bind(); });
    while (!m_server->is_running())
        std::this_thread::yield();
    return port;
}

void HttpServer::Stop()
{
    if (!m_thread.joinable())
        return;
    m_server->stop();
    m_thread.join();
}

} // namespace farm
