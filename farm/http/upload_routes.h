#pragma once

#include <QJsonObject>

namespace farm {

class ApiRequest;
class ContentStore;
class HttpServer;
class RequestGate;
class UploadStore;

/// Routes for uploading scene files.
class UploadRoutes
{
public:
    UploadRoutes(RequestGate& gate, ContentStore& contents, UploadStore& uploads);

    /// The routes must outlive the server.
    void AddTo(HttpServer& server);

private:
    QJsonObject ListKnown(const ApiRequest& request);
    QJsonObject Begin(const ApiRequest& request);
    QJsonObject Show(const ApiRequest& request);
    QJsonObject Append(const ApiRequest& request);
    QJsonObject Unpack(const ApiRequest& request);
    QJsonObject Remove(const ApiRequest& request);

    RequestGate& m_gate;
    ContentStore& m_contents;
    UploadStore& m_uploads;
};

} // namespace farm
