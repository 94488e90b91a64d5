#pragma once

#include "farm/http/sending_room.h"

#include <httplib.h>

#include <array>
#include <chrono>

namespace farm {

/// A connection's stream. The connection is closed when its client keeps the farm waiting too long for the next bytes,
/// or too long in all for the number of bytes. Only a stream of events waits for the client; the part of another answer
/// that the client does not take at once is kept for later.
class TimedStream : public httplib::Stream
{
public:
    explicit TimedStream(socket_t socket);
    ~TimedStream() override;
    TimedStream(const TimedStream&) = delete;
    TimedStream& operator=(const TimedStream&) = delete;

    /// The stream of the request that this thread serves.
    static TimedStream& Current();
    /// Makes writing wait for the client from now on.
    void WaitForClient() { m_waits = true; }
    /// Queues a part of a file after everything written so far.
    void LeaveFile(const std::shared_ptr<QFile>& file, std::int64_t offset, std::int64_t length);
    /// The bytes and the file that are still to be sent.
    const AnswerRest& Rest() const { return m_rest; }

    bool is_readable() const override;
    bool is_writable() const override;
    ssize_t read(char* bytes, size_t most) override;
    ssize_t write(const char* bytes, size_t count) override;
    void get_remote_ip_and_port(std::string& address, int& port) const override;
    void get_local_ip_and_port(std::string& address, int& port) const override;
    socket_t socket() const override { return m_socket; }

private:
    bool Wait(short event) const;

    const socket_t m_socket;
    // The library reads headers byte by byte.
    std::array<char, 4096> m_buffer {};
    std::size_t m_begin = 0;
    std::size_t m_end = 0;
    std::int64_t m_bytes = 0;
    bool m_waits = false;
    AnswerRest m_rest;
    mutable std::chrono::steady_clock::duration m_waited {};
};

} // namespace farm
