#include "farm/http/timed_stream.h"

#include <algorithm>
#include <cerrno>
#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>

namespace farm {

namespace {

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds LongestWait = 5s;
// A client may keep the farm waiting for this long, plus the time that its bytes take at the slowest speed.
constexpr std::chrono::milliseconds Grace = 10s;
constexpr std::int64_t SlowestSpeed = 8; // bytes per millisecond

thread_local TimedStream* current = nullptr;

template <typename NameOf>
void NameEnd(socket_t socket, NameOf nameOf, std::string& address, int& port)
{
    sockaddr_storage name {};
    socklen_t length = sizeof(name);
    auto* const plain = reinterpret_cast<sockaddr*>(&name);
    std::array<char, NI_MAXHOST> host {};
    std::array<char, NI_MAXSERV> service {};
    constexpr int Numeric = NI_NUMERICHOST | NI_NUMERICSERV;
    if (nameOf(socket, plain, &length) != 0
        || ::getnameinfo(plain, length, host.data(), host.size(), service.data(), service.size(), Numeric)
            != 0)
        return;
    address = host.data();
    port = std::atoi(service.data());
}

} // namespace

TimedStream::TimedStream(socket_t socket)
    : m_socket(socket)
{
    current = this;
}

TimedStream::~TimedStream()
{
    current = nullptr;
}

TimedStream& TimedStream::Current()
{
    return *current;
}

void TimedStream::LeaveFile(const std::shared_ptr<QFile>& file, std::int64_t offset, std::int64_t length)
{
    m_rest.file = file;
    m_rest.offset = offset;
    m_rest.length = length;
}

bool TimedStream::is_readable() const
{
    return m_begin < m_end || Wait(POLLIN);
}

bool TimedStream::is_writable() const
{
    return !m_waits || Wait(POLLOUT);
}

ssize_t TimedStream::read(char* bytes, size_t most)
{
    if (m_begin == m_end) {
        if (!Wait(POLLIN))
            return -1;
        const ssize_t got = ::recv(m_socket, m_buffer.data(), m_buffer.size(), 0);
        if (got <= 0)
            return got;
        m_begin = 0;
        m_end = std::size_t(got);
        m_bytes += got;
    }
    const std::size_t count = std::min(most, m_end - m_begin);
    std::copy_n(m_buffer.data() + m_begin, count, bytes);
    m_begin += count;
    return ssize_t(count);
}

ssize_t TimedStream::write(const char* bytes, size_t count)
{
    if (m_waits && !Wait(POLLOUT))
        return -1;
    ssize_t sent = 0;
    if (m_rest.IsEmpty()) {
        sent = ::send(m_socket, bytes, count, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent < 0 && (m_waits || (errno != EAGAIN && errno != EINTR)))
            return -1;
        sent = std::max<ssize_t>(sent, 0);
        m_bytes += sent;
    }
    if (m_waits)
        return sent;
    m_rest.bytes.append(bytes + sent, int(std::int64_t(count) - sent));
    return ssize_t(count);
}

void TimedStream::get_remote_ip_and_port(std::string& address, int& port) const
{
    NameEnd(m_socket, ::getpeername, address, port);
}

void TimedStream::get_local_ip_and_port(std::string& address, int& port) const
{
    NameEnd(m_socket, ::getsockname, address, port);
}

/// Returns false when the client is too slow or has gone.
bool TimedStream::Wait(short event) const
{
    const auto begin = std::chrono::steady_clock::now();
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        Grace + std::chrono::milliseconds(m_bytes / SlowestSpeed) - m_waited);
    if (left <= 0ms)
        return false;
    pollfd wanted {m_socket, event, 0};
    int ready = 0;
    do
        ready = ::poll(&wanted, 1, int(std::min(left, LongestWait).count()));
    while (ready < 0 && errno == EINTR);
    m_waited += std::chrono::steady_clock::now() - begin;
    return ready > 0;
}

} // namespace farm
