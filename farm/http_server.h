#pragma once

#include <QJsonObject>
#include <QString>

#include <functional>
#include <memory>
#include <thread>

namespace httplib {
class Server;
struct Request;
} // namespace httplib

namespace farm {

/// A request as the routes see it. Texts are as sent: nothing of them has been checked.
class ApiRequest
{
public:
    explicit ApiRequest(const httplib::Request& request);

    /// The caller's network address.
    QString Address() const;
    /// The session token of the Authorization header, or empty.
    QString Token() const;
    /// What the group in the route's path stands for.
    QString PathPart() const;
    /// A parameter of the query, or empty.
    QByteArray Query(const char* name) const;
    /// The body; throws BadInput when it is no JSON object.
    QJsonObject Body() const;

private:
    const httplib::Request& m_request;
};

/// A refusal that a route throws: becomes the answer with this status.
struct ApiRefusal
{
    int status;
    const char* word;
    QString message;
    int retryAfterSeconds = 0;
};

/// Serves JSON over HTTP in threads of its own.
class HttpServer
{
public:
    using Handler = std::function<QJsonObject(const ApiRequest&)>;

    HttpServer();
    /// Ends the server as Stop() does.
    ~HttpServer();

    /// Before Start(). Handlers run in several threads at a time. They may throw ApiRefusal and BadInput;
    /// any other exception becomes a 500 whose reason only the log holds. `path` is a regular expression.
    void Get(const char* path, Handler handler);
    void Post(const char* path, Handler handler);
    void Delete(const char* path, Handler handler);

    /// Listens; port 0 takes a free one. Returns the port; throws std::runtime_error when it cannot be had.
    int Start(const QString& address, int port);
    /// Lets the requests in work end, then closes.
    void Stop();

private:
    void SetUp();

    std::unique_ptr<httplib::Server> m_server;
    std::thread m_thread;
};

} // namespace farm
