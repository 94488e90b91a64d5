#pragma once

#include <QByteArray>
#include <QFile>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace farm {

/// The unsent part of an answer: bytes, followed by a part of a file.
struct AnswerRest
{
    QByteArray bytes;
    /// Open for reading; may be null.
    std::shared_ptr<QFile> file;
    std::int64_t offset = 0;
    std::int64_t length = 0;

    bool IsEmpty() const { return bytes.isEmpty() && length == 0; }
};

/// Connections whose clients have not taken their answers yet. They take no threads of requests, so clients that receive
/// slowly do not keep others waiting. A connection is closed when its answer is sent, or when its client has taken nothing
/// for too long.
class SendingRoom
{
public:
    SendingRoom();
    /// Gives the open connections a moment, then closes them.
    ~SendingRoom();
    SendingRoom(const SendingRoom&) = delete;
    SendingRoom& operator=(const SendingRoom&) = delete;

    /// Takes over the connection. When there are too many, or their answers take too much memory, those whose clients
    /// have taken nothing for longest are closed.
    void Add(int socket, const AnswerRest& rest);

private:
    using Clock = std::chrono::steady_clock;

    struct Guest
    {
        AnswerRest rest;
        Clock::time_point progress;
    };

    void Work();
    void Serve(int socket);
    void MakeRoom(std::int64_t bytes);
    void Keep(int socket, Guest guest);
    Guest Take(std::map<int, Guest>::iterator guest);
    void CloseLate();
    void Close(std::map<int, Guest>::iterator guest);
    std::map<int, Guest>::iterator Slowest();

    const int m_poll;
    std::mutex m_mutex;
    /// The connections that no thread serves at the moment, by their sockets.
    std::map<int, Guest> m_guests;
    std::int64_t m_bytes = 0; ///< size of all unsent answers in memory
    int m_served = 0;
    Clock::time_point m_nextLook;
    std::atomic<bool> m_ends {false};
    std::vector<std::thread> m_threads;
};

} // namespace farm
