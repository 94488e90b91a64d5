#pragma once

#include "farm/http/account_routes.h"
#include "farm/http/event_routes.h"
#include "farm/http/frame_routes.h"
#include "farm/http/http_server.h"
#include "farm/http/job_routes.h"
#include "farm/http/overview_routes.h"
#include "farm/http/request_gate.h"
#include "farm/http/storage_routes.h"
#include "farm/http/upload_routes.h"

namespace farm {

/// The farm's HTTP interface: all routes over one server.
class HttpApi
{
public:
    /// All these objects must outlive the interface.
    struct Dependencies
    {
        Database& database;
        AccountStore& accounts;
        ProjectStore& projects;
        ContentStore& contents;
        UploadStore& uploads;
        JobStore& jobs;
        JobActions& actions;
        JobSubmission& submission;
        FrameStore& frames;
        const FramesInWork& inWork;
        PictureStore& pictures;
        ChangeFeed& feed;
        FarmOverview& overview;
        NodeBoard& nodes;
        LogStore& logs;
        /// Administrators see how full the disk of this folder is.
        QDir dataFolder;
        const AccountTerms& terms;
    };

    /// @param proxies are the addresses of proxies that are trusted to tell the client's address.
    /// Throws std::runtime_error when one is not an address.
    HttpApi(const Dependencies& dependencies, const RequestLimits& limits, const QStringList& proxies = {});

    /// Listens; port 0 chooses a free one. Returns the port. Throws std::runtime_error when it cannot listen there.
    int Start(const QString& address, int port) { return m_server.Start(address, port); }
    /// Returns when the requests being served have been answered. Close the feed first, which ends the streams of events.
    void Stop() { m_server.Stop(); }

private:
    RequestGate m_gate;
    AccountRoutes m_accounts;
    UploadRoutes m_uploads;
    StorageRoutes m_storage;
    JobRoutes m_jobs;
    FrameRoutes m_frames;
    EventRoutes m_events;
    OverviewRoutes m_overview;
    HttpServer m_server;
};

} // namespace farm
