#pragma once

#include "farm/http/client_address.h"

#include <QFile>
#include <QJsonObject>
#include <QString>

#include <array>
#include <atomic>
#include <functional>
#include <memory>
#include <thread>
#include <utility>

namespace httplib {
struct Request;
} // namespace httplib

namespace farm {

class RequestServer;

/// A request as the routes see it. Its texts are those that the client sent, unchecked.
class ApiRequest
{
public:
    explicit ApiRequest(const httplib::Request& request);

    /// The caller's network address.
    QString Address() const;
    /// The session token of the Authorization header; empty when there is none.
    QString Token() const;
    /// The text matched by a group of the route's path; groups count from 1.
    QString PathPart(int group = 1) const;
    /// A parameter of the query; empty when there is none.
    QByteArray Query(const char* name) const;
    /// The body; throws InvalidInput when it is not a JSON object.
    QJsonObject Body() const;
    /// The body as raw bytes.
    QByteArray Bytes() const;

    /// Holds on to what the request occupies until it has been answered.
    void Keep(std::shared_ptr<const void> occupied) const { m_occupied = std::move(occupied); }

private:
    const httplib::Request& m_request;
    mutable std::shared_ptr<const void> m_occupied;
};

/// An answer that is a file.
struct FileAnswer
{
    /// Open for reading, so that the whole file is sent even if it is removed or replaced meanwhile.
    std::shared_ptr<QFile> file;
    std::int64_t size = 0;
    /// Empty when the file may still change; it is then always sent as a whole.
    QString checksum;
    const char* type = "application/octet-stream";
};

/// Returns the next bytes of a stream of server-sent events, for which it may wait; no bytes end the stream.
using EventStream = std::function<QByteArray()>;

/// Serves JSON, files and streams of events over HTTP in its own threads.
class HttpServer
{
public:
    using Handler = std::function<QJsonObject(const ApiRequest&)>;
    using FileHandler = std::function<FileAnswer(const ApiRequest&)>;
    using TextHandler = std::function<QByteArray(const ApiRequest&)>;
    using EventHandler = std::function<EventStream(const ApiRequest&)>;

    /// The most bytes that the body of a PUT may have; other bodies may have 1 MiB.
    static constexpr int LargestChunk = 4 * 1024 * 1024;
    /// The most streams of events at a time.
    static constexpr int MostStreams = 256;

    /// @param proxies are trusted to tell the addresses of their clients.
    explicit HttpServer(const TrustedProxies& proxies = TrustedProxies());
    /// Calls Stop().
    ~HttpServer();

    /// Add routes before Start(). `path` is a regular expression. Handlers run in several threads at a time and may throw
    /// HttpRefusal and Refusal; any other exception is logged and answered with 500.
    void Get(const char* path, Handler handler);
    void Post(const char* path, Handler handler);
    void Put(const char* path, Handler handler);
    void Delete(const char* path, Handler handler);
    /// Serves a file without occupying a thread, with support for Range, If-Range and If-Match.
    void GetFile(const char* path, FileHandler handler);
    /// Serves a text of this media type to browsers and to programs other than clients. A page can load nothing but
    /// what the farm itself serves.
    void GetText(const char* path, const char* type, TextHandler handler);
    /// Sends the stream that the handler returns. Each stream occupies a thread, so the handler must not return more than
    /// `MostStreams` at a time.
    void GetEvents(const char* path, EventHandler handler);

    /// Listens; port 0 chooses a free one. Returns the port. Throws std::runtime_error when it cannot listen there.
    int Start(const QString& address, int port);
    /// Returns when the requests being served have been answered; the streams of events have to end by themselves.
    void Stop();

    /// The number of answers whose status begins with this digit, such as 4 for 404.
    std::int64_t Answers(int hundred) const;

private:
    void SetUp();

    std::unique_ptr<RequestServer> m_server;
    TrustedProxies m_proxies;
    int m_listener = -1; // the socket, which belongs to m_server
    std::thread m_thread;
    std::array<std::atomic<std::int64_t>, 6> m_answers {};
};

} // namespace farm
