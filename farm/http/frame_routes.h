#pragma once

#include <QJsonObject>

namespace farm {

class ApiRequest;
class HttpServer;
class FramesInWork;
class FrameStore;
class JobStore;
class PictureStore;
class RequestGate;
struct FileAnswer;

/// Routes for looking at frames and fetching the finished ones.
class FrameRoutes
{
public:
    FrameRoutes(RequestGate& gate, JobStore& jobs, FrameStore& frames, const FramesInWork& inWork,
        PictureStore& pictures);

    /// The routes must outlive the server.
    void AddTo(HttpServer& server);

private:
    QJsonObject ListFrames(const ApiRequest& request);
    QJsonObject ShowLog(const ApiRequest& request);
    QJsonObject ListPictures(const ApiRequest& request);
    FileAnswer SendPicture(const ApiRequest& request);

    RequestGate& m_gate;
    JobStore& m_jobs;
    FrameStore& m_frames;
    const FramesInWork& m_inWork;
    PictureStore& m_pictures;
};

} // namespace farm
