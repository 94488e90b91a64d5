#pragma once

#include "farm/http/http_refusal.h"

#include <QFile>
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
    /// What a group in the route's path stands for; they count from 1.
    QString PathPart(int group = 1) const;
    /// A parameter of the query, or empty.
    QByteArray Query(const char* name) const;
    /// The body; throws BadInput when it is no JSON object.
    QJsonObject Body() const;
    /// The body as it came.
    QByteArray Bytes() const;

private:
    const httplib::Request& m_request;
};

/// A file that a route answers.
struct FileAnswer
{
    /// Open: the answer is these bytes, whatever becomes of the name.
    std::shared_ptr<QFile> file;
    std::int64_t size = 0;
    QString checksum;
};

/// Serves JSON, and files, over HTTP in threads of its own.
class HttpServer
{
public:
    using Handler = std::function<QJsonObject(const ApiRequest&)>;
    using FileHandler = std::function<FileAnswer(const ApiRequest&)>;

    /// The most bytes that the body of a PUT may have; other bodies have at most 1 MiB.
    static constexpr int LargestChunk = 4 * 1024 * 1024;

    HttpServer();
    /// Ends the server as Stop() does.
    ~HttpServer();

    /// Before Start(). Handlers run in several threads at a time. They may throw ApiRefusal and BadInput;
    /// any other exception becomes a 500 whose reason only the log holds. `path` is a regular expression.
    void Get(const char* path, Handler handler);
    void Post(const char* path, Handler handler);
    void Put(const char* path, Handler handler);
    void Delete(const char* path, Handler handler);
    /// Answers ranges and looks at If-Match; reads the file in blocks.
    void GetFile(const char* path, FileHandler handler);

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
