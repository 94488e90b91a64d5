#pragma once

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

/// A request as the routes see it. Texts are unchecked, as the client sent them.
class ApiRequest
{
public:
    explicit ApiRequest(const httplib::Request& request);

    /// The caller's network address.
    QString Address() const;
    /// The session token of the Authorization header; empty when there is none.
    QString Token() const;
    /// The text that a group in the route's path has matched; groups count from 1.
    QString PathPart(int group = 1) const;
    /// A parameter of the query; empty when there is none.
    QByteArray Query(const char* name) const;
    /// The body; throws InvalidInput when it is no JSON object.
    QJsonObject Body() const;
    /// The body as raw bytes.
    QByteArray Bytes() const;

private:
    const httplib::Request& m_request;
};

/// An answer that is a file.
struct FileAnswer
{
    /// Open for reading, so that a removed or replaced file is still sent whole.
    std::shared_ptr<QFile> file;
    std::int64_t size = 0;
    QString checksum;
};

/// Serves JSON and files over HTTP in threads of its own.
class HttpServer
{
public:
    using Handler = std::function<QJsonObject(const ApiRequest&)>;
    using FileHandler = std::function<FileAnswer(const ApiRequest&)>;

    /// The most bytes that the body of a PUT may have; other bodies may have 1 MiB.
    static constexpr int LargestChunk = 4 * 1024 * 1024;

    HttpServer();
    /// Calls Stop().
    ~HttpServer();

    /// Routes are added before Start(). `path` is a regular expression. Handlers run in several threads at a time and may
    /// throw HttpRefusal and Refusal; any other exception is logged and answered with 500.
    void Get(const char* path, Handler handler);
    void Post(const char* path, Handler handler);
    void Put(const char* path, Handler handler);
    void Delete(const char* path, Handler handler);
    /// Serves a file in blocks, with support for Range, If-Range and If-Match.
    void GetFile(const char* path, FileHandler handler);

    /// Listens; port 0 takes a free one. Returns the port. Throws std::runtime_error when it cannot listen there.
    int Start(const QString& address, int port);
    /// Returns when the requests being served have been answered.
    void Stop();

private:
    void SetUp();

    std::unique_ptr<httplib::Server> m_server;
    std::thread m_thread;
};

} // namespace farm
