#include "http_server.h"

#include "api_json.h"
#include "bad_input.h"

#include <QJsonDocument>

#include <httplib.h>
#include <spdlog/spdlog.h>

#include <initializer_list>

namespace farm {

namespace {

constexpr std::size_t largestBody = std::size_t {1024} * 1024;
constexpr int threadCount = 16;
constexpr int ioTimeoutSeconds = 5;

void Answer(httplib::Response& response, int status, const QJsonObject& body)
{
    response.status = status;
    response.set_content(
        QJsonDocument(body).toJson(QJsonDocument::Compact).toStdString(), "application/json");
}

void Refuse(httplib::Response& response, int status, const char* word, const QString& message)
{
    Answer(response, status, ErrorJson(word, message));
}

// The library decompresses bodies and reads those of unknown length without a limit, and answers ranges of
// JSON: none of it is of use here.
bool HasUnwantedHeader(const httplib::Request& request)
{
    for (const char* header : {"Transfer-Encoding", "Content-Encoding", "Range"}) {
        if (request.has_header(header))
            return true;
    }
    return request.method == "POST" && !request.has_header("Content-Length");
}

httplib::Server::HandlerResponse CheckHeaders(const httplib::Request& request, httplib::Response& response)
{
    if (!HasUnwantedHeader(request))
        return httplib::Server::HandlerResponse::Unhandled;
    Refuse(response, 400, "bad_request", QStringLiteral("a body is sent plain, whole and with its length"));
    return httplib::Server::HandlerResponse::Handled;
}

// Failures that no route has answered.
void CompleteFailure(const httplib::Request&, httplib::Response& response)
{
    if (!response.body.empty())
        return;
    if (response.status == 404)
        Refuse(response, 404, "not_found", QStringLiteral("there is nothing here"));
    else if (response.status == 413)
        Refuse(response, 413, "too_large", QStringLiteral("the request is too large"));
    else if (response.status < 500)
        Refuse(response, response.status, "bad_request", QStringLiteral("the request cannot be read"));
    else
        Refuse(response, response.status, "internal", QStringLiteral("the farm has a problem"));
}

httplib::Server::Handler Wrap(HttpServer::Handler handler)
{
    return [handler = std::move(handler)](const httplib::Request& request, httplib::Response& response) {
        try {
            Answer(response, 200, handler(ApiRequest(request)));
        } catch (const ApiRefusal& refusal) {
            if (refusal.retryAfterSeconds > 0)
                response.set_header("Retry-After", std::to_string(refusal.retryAfterSeconds));
            Refuse(response, refusal.status, refusal.word, refusal.message);
        } catch (const BadInput& error) {
            Refuse(response, 400, "bad_request", QString::fromUtf8(error.what()));
        } catch (const std::exception& error) {
            spdlog::error("{} {} failed: {}", request.method, request.path, error.what());
            Refuse(response, 500, "internal", QStringLiteral("the farm has a problem"));
        }
    };
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

QString ApiRequest::PathPart() const
{
    return QString::fromStdString(m_request.matches[1]);
}

QByteArray ApiRequest::Query(const char* name) const
{
    return QByteArray::fromStdString(m_request.get_param_value(name));
}

QJsonObject ApiRequest::Body() const
{
    const QJsonDocument document = QJsonDocument::fromJson(QByteArray::fromStdString(m_request.body));
    if (!document.isObject())
        throw BadInput("the body is no JSON object");
    return document.object();
}

HttpServer::HttpServer()
    : m_server(std::make_unique<httplib::Server>())
{
    SetUp();
}

HttpServer::~HttpServer()
{
    Stop();
}

void HttpServer::SetUp()
{
    m_server->new_task_queue = [] { return new httplib::ThreadPool(threadCount); };
    m_server->set_payload_max_length(largestBody);
    m_server->set_read_timeout(ioTimeoutSeconds);
    m_server->set_write_timeout(ioTimeoutSeconds);
    // A connection that is kept open would hold a thread while it is idle.
    m_server->set_keep_alive_max_count(1);
    // The library's own choice lets two servers share a port.
    m_server->set_socket_options([](socket_t socket) {
        const int yes = 1;
        ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof(yes));
    });
    m_server->set_pre_routing_handler(CheckHeaders);
    m_server->set_error_handler(CompleteFailure);
    m_server->set_logger([](const httplib::Request& request, const httplib::Response& response) {
        spdlog::debug("{} {} {} {}", request.remote_addr, request.method, request.path, response.status);
    });
}

void HttpServer::Get(const char* path, Handler handler)
{
    m_server->Get(path, Wrap(std::move(handler)));
}

void HttpServer::Post(const char* path, Handler handler)
{
    m_server->Post(path, Wrap(std::move(handler)));
}

void HttpServer::Delete(const char* path, Handler handler)
{
    m_server->Delete(path, Wrap(std::move(handler)));
}

int HttpServer::Start(const QString& address, int port)
{
    const std::string host = address.toStdString();
    const bool bound
        = port == 0 ? (port = m_server->bind_to_any_port(host)) > 0 : m_server->bind_to_port(host, port);
    if (!bound)
        throw std::runtime_error("cannot listen on " + host);
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
