#include "farm/http/waiting_room.h"

#include <QByteArray>

#include <algorithm>
#include <array>
#include <cerrno>
#include <netdb.h>
#include <stdexcept>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

namespace farm {

namespace {

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds LongestStay = 10s;
constexpr std::size_t MostGuests = 1024;
constexpr int MostOfAnAddress = 512;
// The system buffers at least this many unread bytes per connection.
constexpr int MostBytes = 48 * 1024;
constexpr int MostOfABody = 32 * 1024;

/// A request is Begun once so much of it has arrived that a thread may read the rest as it comes.
enum class Arrival { Unfinished, Begun, Whole, Gone };

/// The number of body bytes that the server reads before it answers.
qlonglong WantedBody(const QByteArray& headers)
{
    const QByteArray lower = headers.toLower();
    // The server refuses these without reading the body.
    for (const char* name : {"\r\ncontent-encoding:", "\r\ntransfer-encoding:"}) {
        if (lower.contains(name))
            return 0;
    }
    const QByteArray name = "\r\ncontent-length:";
    const int place = lower.indexOf(name);
    if (place < 0)
        return 0;
    const int begin = place + name.size();
    return std::max(0LL, lower.mid(begin, lower.indexOf('\r', begin) - begin).trimmed().toLongLong());
}

Arrival ArrivalOf(int socket)
{
    QByteArray bytes(MostBytes, Qt::Uninitialized);
    const ssize_t got = ::recv(socket, bytes.data(), MostBytes, MSG_PEEK | MSG_DONTWAIT);
    if (got < 0)
        return errno == EAGAIN || errno == EINTR ? Arrival::Unfinished : Arrival::Gone;
    if (got == 0)
        return Arrival::Gone;
    bytes.truncate(int(got));
    const int end = bytes.indexOf("\r\n\r\n");
    // The server refuses a request whose headers are longer.
    if (end < 0)
        return got == MostBytes ? Arrival::Whole : Arrival::Unfinished;
    const qlonglong wanted = WantedBody(bytes.left(end + 2));
    const qlonglong here = got - (end + 4);
    if (here >= wanted)
        return Arrival::Whole;
    // A client that sends "Expect" waits for a go-ahead before it sends the body.
    const bool isAsking = bytes.left(end + 2).toLower().contains("\r\nexpect:");
    return isAsking || here >= MostOfABody || got == MostBytes ? Arrival::Begun : Arrival::Unfinished;
}

std::string AddressOf(int socket)
{
    sockaddr_storage name {};
    socklen_t length = sizeof(name);
    std::array<char, NI_MAXHOST> host {};
    auto* const plain = reinterpret_cast<sockaddr*>(&name);
    if (::getpeername(socket, plain, &length) != 0
        || ::getnameinfo(plain, length, host.data(), host.size(), nullptr, 0, NI_NUMERICHOST) != 0)
        return {};
    return host.data();
}

void Watch(int poll, int socket)
{
    epoll_event event {};
    // Edge-triggered, since the bytes that have arrived stay unread.
    event.events = EPOLLIN | EPOLLRDHUP | EPOLLET;
    event.data.fd = socket;
    ::epoll_ctl(poll, EPOLL_CTL_ADD, socket, &event);
}

} // namespace

WaitingRoom::WaitingRoom(Ready ready)
    : m_ready(std::move(ready))
    , m_poll(::epoll_create1(EPOLL_CLOEXEC))
    , m_wake(::eventfd(0, EFD_CLOEXEC))
{
    if (m_poll < 0 || m_wake < 0)
        throw std::runtime_error("the system has no more file descriptors");
    Watch(m_poll, m_wake);
    m_thread = std::thread([this] { Work(); });
}

WaitingRoom::~WaitingRoom()
{
    ::eventfd_write(m_wake, 1);
    m_thread.join();
    while (!m_guests.empty())
        Close(m_guests.begin());
    ::close(m_wake);
    ::close(m_poll);
}

void WaitingRoom::Add(int socket)
{
    const Arrival arrival = ArrivalOf(socket);
    if (arrival == Arrival::Whole || arrival == Arrival::Begun) {
        m_ready(socket, arrival == Arrival::Whole);
        return;
    }
    const std::string address = AddressOf(socket);
    const std::lock_guard lock(m_mutex);
    MakeRoom(address);
    m_guests.push_back({socket, address, std::chrono::steady_clock::now()});
    m_bySocket[socket] = std::prev(m_guests.end());
    ++m_byAddress[address];
    // This also reports bytes that arrived in the meantime.
    Watch(m_poll, socket);
}

void WaitingRoom::Work()
{
    std::array<epoll_event, 64> events {};
    for (;;) {
        int wait = 0;
        {
            const std::lock_guard lock(m_mutex);
            wait = CloseLate();
        }
        const int count = ::epoll_wait(m_poll, events.data(), int(events.size()), wait);
        for (int index = 0; index < count; ++index) {
            const int socket = events.at(std::size_t(index)).data.fd;
            if (socket == m_wake)
                return;
            Look(socket);
        }
    }
}

void WaitingRoom::Look(int socket)
{
    Arrival arrival {};
    {
        const std::lock_guard lock(m_mutex);
        const auto found = m_bySocket.find(socket);
        // The connection may have been closed since, and its descriptor reused by another one.
        if (found == m_bySocket.end())
            return;
        arrival = ArrivalOf(socket);
        if (arrival == Arrival::Gone)
            Close(found->second);
        if (arrival == Arrival::Gone || arrival == Arrival::Unfinished)
            return;
        ::epoll_ctl(m_poll, EPOLL_CTL_DEL, socket, nullptr);
        Remove(found->second);
    }
    m_ready(socket, arrival == Arrival::Whole);
}

void WaitingRoom::MakeRoom(const std::string& address)
{
    const auto ofAddress = m_byAddress.find(address);
    if (ofAddress != m_byAddress.end() && ofAddress->second >= MostOfAnAddress)
        Close(std::find_if(m_guests.begin(), m_guests.end(),
            [&address](const Guest& guest) { return guest.address == address; }));
    else if (m_guests.size() >= MostGuests)
        Close(m_guests.begin());
}

/// Returns the milliseconds until the next one is late, -1 when none is here.
int WaitingRoom::CloseLate()
{
    while (!m_guests.empty()) {
        const auto stayed = std::chrono::steady_clock::now() - m_guests.front().arrived;
        if (stayed < LongestStay)
            return int(std::chrono::duration_cast<std::chrono::milliseconds>(LongestStay - stayed).count())
                + 1;
        Close(m_guests.begin());
    }
    // A connection that arrives meanwhile cannot be late before the next look, because each may stay for this long.
    return int(LongestStay.count());
}

void WaitingRoom::Close(Guests::iterator guest)
{
    const int socket = guest->socket;
    Remove(guest);
    ::close(socket);
}

void WaitingRoom::Remove(Guests::iterator guest)
{
    const auto ofAddress = m_byAddress.find(guest->address);
    if (--ofAddress->second == 0)
        m_byAddress.erase(ofAddress);
    m_bySocket.erase(guest->socket);
    m_guests.erase(guest);
}

} // namespace farm
