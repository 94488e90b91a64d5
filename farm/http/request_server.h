#pragma once

#include "farm/http/request_threads.h"
#include "farm/http/waiting_room.h"

namespace farm {

/// The library's server with two changes: a connection occupies a thread only from the arrival of its request until the
/// answer is known, and it is given up when its client is too slow.
class RequestServer : public httplib::Server
{
public:
    /// @param mostThreads is the most requests that are served at a time, besides those whose long bodies are arriving.
    explicit RequestServer(std::size_t mostThreads);

private:
    class Admission;

    bool process_and_close_socket(socket_t socket) override;
    void Serve(socket_t socket);

    Admission* m_admission = nullptr; // belongs to the library while the server runs
};

} // namespace farm
