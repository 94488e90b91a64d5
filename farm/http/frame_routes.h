#pragma once

#include <QJsonObject>

namespace farm {

class ApiRequest;
class HttpServer;
class PictureStore;
class RequestGate;
struct FileAnswer;

/// Routes for fetching finished frames.
class FrameRoutes
{
public:
    FrameRoutes(RequestGate& gate, PictureStore& pictures);

    /// The routes must outlive the server.
    void AddTo(HttpServer& server);

private:
    QJsonObject ListPictures(const ApiRequest& request);
    FileAnswer SendPicture(const ApiRequest& request);

    RequestGate& m_gate;
    PictureStore& m_pictures;
};

} // namespace farm
