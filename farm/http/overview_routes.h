#pragma once

#include "farm/http/http_server.h"

#include <QDir>

namespace farm {

class FarmOverview;
class FramesInWork;
class LogStore;
class NodeBoard;
class RequestGate;

/// Routes for the administrators' page and for monitoring.
class OverviewRoutes
{
public:
    /// All these objects must outlive the routes.
    struct Dependencies
    {
        RequestGate& gate;
        FarmOverview& overview;
        const FramesInWork& inWork;
        NodeBoard& nodes;
        LogStore& logs;
    };

    /// @param dataFolder is on the disk whose space is shown.
    OverviewRoutes(const Dependencies& dependencies, const QDir& dataFolder);

    void AddTo(HttpServer& server);

private:
    void RequireAdministrator(const ApiRequest& request);
    QJsonObject Show(const ApiRequest& request);
    FileAnswer SendLog(const ApiRequest& request);
    FileAnswer SendOwnLog(const ApiRequest& request);
    QByteArray Metrics(const HttpServer& server) const;

    Dependencies m_deps;
    QDir m_dataFolder;
};

} // namespace farm
