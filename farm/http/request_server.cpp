#include "farm/http/request_server.h"

#include "farm/http/timed_stream.h"

#include <sys/socket.h>
#include <unistd.h>

namespace farm {

namespace {

constexpr std::size_t BodyThreads = 64;

} // namespace

/// Replaces the library's threads by a waiting room, the threads that serve its requests, and a sending room for the
/// rest of their answers.
class RequestServer::Admission : public httplib::TaskQueue
{
public:
    Admission(RequestServer& server, std::size_t mostThreads)
        : m_threads(mostThreads)
        , m_bodyThreads(BodyThreads)
        , m_room(std::make_unique<WaitingRoom>([this, &server](int socket, bool isWhole) {
            (isWhole ? m_threads : m_bodyThreads).enqueue([&server, socket] { server.Serve(socket); });
        }))
    {
    }

    /// The task only hands a connection over, which takes no time.
    void enqueue(std::function<void()> task) override { task(); }

    void shutdown() override
    {
        m_room.reset();
        m_threads.shutdown();
        m_bodyThreads.shutdown();
        m_sending.reset();
    }

    void Add(socket_t socket) { m_room->Add(socket); }
    void Send(socket_t socket, const AnswerRest& rest) { m_sending->Add(socket, rest); }

private:
    std::unique_ptr<SendingRoom> m_sending = std::make_unique<SendingRoom>();
    RequestThreads m_threads;
    // A request that is still arriving never takes the place of one that has arrived.
    RequestThreads m_bodyThreads;
    std::unique_ptr<WaitingRoom> m_room;
};

RequestServer::RequestServer(std::size_t mostThreads)
{
    new_task_queue = [this, mostThreads] { return m_admission = new Admission(*this, mostThreads); };
}

bool RequestServer::process_and_close_socket(socket_t socket)
{
    m_admission->Add(socket);
    return true;
}

void RequestServer::Serve(socket_t socket)
{
    TimedStream stream(socket);
    bool isClosed = false;
    process_request(stream, true, isClosed, nullptr);
    if (!stream.Rest().IsEmpty()) {
        m_admission->Send(socket, stream.Rest());
        return;
    }
    ::shutdown(socket, SHUT_RDWR);
    ::close(socket);
}

} // namespace farm
