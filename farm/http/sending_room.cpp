#include "farm/http/sending_room.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <stdexcept>
#include <sys/epoll.h>
#include <sys/sendfile.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

namespace farm {

namespace {

using namespace std::chrono_literals;

// Several threads, because reading from the disk may take a while.
constexpr int Threads = 4;
constexpr std::size_t MostGuests = 1024;
constexpr std::int64_t MostBytes = std::int64_t {256} << 20;
constexpr std::chrono::milliseconds LongestPause = 30s;
constexpr std::chrono::milliseconds LookInterval = 200ms;
constexpr std::chrono::milliseconds LongestEnd = 1s;
// After this much of an answer, the others get their turn.
constexpr std::int64_t MostAtOnce = std::int64_t {1} << 20; // bytes

/// Waits for the client to take bytes. One-shot, so that no two threads serve the connection.
void Watch(int poll, int socket, int operation)
{
    epoll_event event {};
    event.events = EPOLLOUT | EPOLLONESHOT;
    event.data.fd = socket;
    ::epoll_ctl(poll, operation, socket, &event);
}

/// Sends as much as the client takes now. Returns the number of bytes, or -1 when the connection is of no more use.
std::int64_t Send(int socket, AnswerRest& rest)
{
    ssize_t sent = 0;
    if (!rest.bytes.isEmpty()) {
        sent = ::send(socket, rest.bytes.constData(), std::size_t(rest.bytes.size()), MSG_NOSIGNAL);
        if (sent > 0)
            rest.bytes.remove(0, int(sent));
    } else {
        off_t offset = rest.offset;
        sent = ::sendfile(
            socket, rest.file->handle(), &offset, std::size_t(std::min(rest.length, MostAtOnce)));
        if (sent == 0)
            return -1; // the file has become shorter
        if (sent > 0) {
            rest.offset += sent;
            rest.length -= sent;
        }
    }
    if (sent < 0)
        return errno == EAGAIN || errno == EINTR ? 0 : -1;
    return sent;
}

void CloseSocket(int socket)
{
    ::shutdown(socket, SHUT_RDWR);
    ::close(socket);
}

} // namespace

SendingRoom::SendingRoom()
    : m_poll(::epoll_create1(EPOLL_CLOEXEC))
{
    if (m_poll < 0)
        throw std::runtime_error("the system has no more file descriptors");
    for (int number = 0; number < Threads; ++number)
        m_threads.emplace_back([this] { Work(); });
}

SendingRoom::~SendingRoom()
{
    m_ends = true;
    for (std::thread& thread : m_threads)
        thread.join();
    while (!m_guests.empty())
        Close(m_guests.begin());
    ::close(m_poll);
}

void SendingRoom::Add(int socket, const AnswerRest& rest)
{
    ::fcntl(socket, F_SETFL, ::fcntl(socket, F_GETFL) | O_NONBLOCK);
    const std::lock_guard lock(m_mutex);
    MakeRoom(rest.bytes.size());
    Keep(socket, {rest, Clock::now()});
    Watch(m_poll, socket, EPOLL_CTL_ADD);
}

void SendingRoom::Work()
{
    std::array<epoll_event, 1> events {};
    Clock::time_point end = Clock::time_point::max();
    while (Clock::now() < end) {
        const int count = ::epoll_wait(m_poll, events.data(), int(events.size()), int(LookInterval.count()));
        if (count > 0)
            Serve(events[0].data.fd);
        CloseLate();
        if (!m_ends)
            continue;
        end = std::min(end, Clock::now() + LongestEnd);
        const std::lock_guard lock(m_mutex);
        if (m_guests.empty() && m_served == 0)
            return;
    }
}

void SendingRoom::Serve(int socket)
{
    Guest guest;
    {
        const std::lock_guard lock(m_mutex);
        const auto found = m_guests.find(socket);
        if (found == m_guests.end())
            return;
        guest = Take(found);
        ++m_served;
    }
    const std::int64_t sent = Send(socket, guest.rest);
    if (sent > 0)
        guest.progress = Clock::now();
    const std::lock_guard lock(m_mutex);
    --m_served;
    if (sent < 0 || guest.rest.IsEmpty()) {
        CloseSocket(socket);
        return;
    }
    Keep(socket, std::move(guest));
    Watch(m_poll, socket, EPOLL_CTL_MOD);
}

void SendingRoom::MakeRoom(std::int64_t bytes)
{
    while (!m_guests.empty() && (m_guests.size() >= MostGuests || m_bytes + bytes > MostBytes))
        Close(Slowest());
}

void SendingRoom::Keep(int socket, Guest guest)
{
    m_bytes += guest.rest.bytes.size();
    m_guests.insert_or_assign(socket, std::move(guest));
}

SendingRoom::Guest SendingRoom::Take(std::map<int, Guest>::iterator guest)
{
    m_bytes -= guest->second.rest.bytes.size();
    return m_guests.extract(guest).mapped();
}

void SendingRoom::CloseLate()
{
    const std::lock_guard lock(m_mutex);
    if (Clock::now() < m_nextLook)
        return;
    m_nextLook = Clock::now() + LookInterval;
    for (auto guest = m_guests.begin(); guest != m_guests.end();) {
        const auto next = std::next(guest);
        if (Clock::now() - guest->second.progress > LongestPause)
            Close(guest);
        guest = next;
    }
}

void SendingRoom::Close(std::map<int, Guest>::iterator guest)
{
    const int socket = guest->first;
    Take(guest);
    CloseSocket(socket);
}

std::map<int, SendingRoom::Guest>::iterator SendingRoom::Slowest()
{
    return std::min_element(m_guests.begin(), m_guests.end(),
        [](const auto& one, const auto& other) { return one.second.progress < other.second.progress; });
}

} // namespace farm
