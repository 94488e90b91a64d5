#include "farm/http/frame_routes.h"

#include "farm/base/local_time.h"
#include "farm/http/api_json.h"
#include "farm/http/http_server.h"
#include "farm/http/json_input.h"
#include "farm/http/request_gate.h"
#include "farm/rendering/frames_in_work.h"
#include "farm/rendering/picture_store.h"

#include <limits>

namespace farm {

namespace {

// A change carries the time at which its writer began to wait for the database, so it may appear after one with a later
// time. Therefore each answer repeats the changes of the last seconds.
constexpr std::int64_t LongestWrite = 10; // s

} // namespace

FrameRoutes::FrameRoutes(
    RequestGate& gate, JobStore& jobs, FrameStore& frames, const FramesInWork& inWork, PictureStore& pictures)
    : m_gate(gate)
    , m_jobs(jobs)
    , m_frames(frames)
    , m_inWork(inWork)
    , m_pictures(pictures)
{
}

void FrameRoutes::AddTo(HttpServer& server)
{
    server.Get("/api/v1/jobs/([^/]{1,64})/frames",
        [this](const ApiRequest& request) { return ListFrames(request); });
    server.Get("/api/v1/jobs/([^/]{1,64})/frames/([0-9]{1,9})/log",
        [this](const ApiRequest& request) { return ShowLog(request); });
    server.Get("/api/v1/jobs/([^/]{1,64})/files",
        [this](const ApiRequest& request) { return ListPictures(request); });
    server.GetFile("/api/v1/jobs/([^/]{1,64})/files/([^/]{1,64})",
        [this](const ApiRequest& request) { return SendPicture(request); });
}

QJsonObject FrameRoutes::ListFrames(const ApiRequest& request)
{
    const std::int64_t account = m_gate.Authorize(request);
    const QString id = request.PathPart();
    const std::int64_t since
        = WholeNumber(request.Query("since"), "since", 0, 0, std::numeric_limits<std::int64_t>::max());
    const std::int64_t now = Now();
    const JobRecord job = m_jobs.Find(account, id);
    const FrameList list = m_frames.List(account, id, since);
    QJsonArray rendering;
    const auto inWork = m_inWork.OfJob(list.job);
    for (const auto& [number, work] : inWork)
        rendering.append(
            QJsonArray {number, qint64(work.Seconds(now)), work.host, PercentJson(work, inWork.size())});
    return DataJson(QJsonObject {{QStringLiteral("job"), JobJson(job)},
        {QStringLiteral("message"), job.message}, {QStringLiteral("priority"), list.priority},
        {QStringLiteral("time"), qint64(now - LongestWrite)}, {QStringLiteral("total"), list.total},
        {QStringLiteral("frames"), FramesJson(list.frames)}, {QStringLiteral("rendering"), rendering}});
}

QJsonObject FrameRoutes::ShowLog(const ApiRequest& request)
{
    const std::int64_t account = m_gate.Authorize(request);
    return DataJson(QJsonObject {
        {QStringLiteral("log"), m_frames.Log(account, request.PathPart(), request.PathPart(2).toInt())}});
}

QJsonObject FrameRoutes::ListPictures(const ApiRequest& request)
{
    const auto pictures = m_pictures.List(m_gate.AuthorizeTransferInTurn(request), request.PathPart());
    return DataJson(QJsonObject {{QStringLiteral("list"), PicturesJson(pictures)}});
}

FileAnswer FrameRoutes::SendPicture(const ApiRequest& request)
{
    const auto opened
        = m_pictures.Open(m_gate.AuthorizeTransfer(request), request.PathPart(), request.PathPart(2));
    return {opened.file, opened.picture.size, opened.picture.checksum};
}

} // namespace farm
