#pragma once

#include <chrono>
#include <functional>
#include <list>
#include <map>
#include <mutex>
#include <string>
#include <thread>

namespace farm {

/// Connections whose requests have not arrived yet. They take no threads, so slow clients do not keep others waiting.
/// A connection leaves when its headers and the first part of its body are here, or when it has waited for too long.
class WaitingRoom
{
public:
    /// Takes over a connection whose request is here as a whole, or whose long body has begun to arrive. Called in the
    /// thread of Add() or in the room's own.
    using Ready = std::function<void(int socket, bool isWhole)>;

    explicit WaitingRoom(Ready ready);
    /// Closes the connections that are still waiting.
    ~WaitingRoom();
    WaitingRoom(const WaitingRoom&) = delete;
    WaitingRoom& operator=(const WaitingRoom&) = delete;

    /// Takes over the connection. When there are too many, of all clients or from one address, the one that has waited
    /// longest is closed.
    void Add(int socket);

private:
    struct Guest
    {
        int socket = -1;
        std::string address;
        std::chrono::steady_clock::time_point arrived;
    };
    using Guests = std::list<Guest>;

    void Work();
    void Look(int socket);
    void MakeRoom(const std::string& address);
    int CloseLate();
    void Close(Guests::iterator guest);
    void Remove(Guests::iterator guest);

    const Ready m_ready;
    const int m_poll;
    const int m_wake;
    std::mutex m_mutex;
    Guests m_guests; // in the order of their arrival
    std::map<int, Guests::iterator> m_bySocket;
    std::map<std::string, int> m_byAddress;
    std::thread m_thread;
};

} // namespace farm
