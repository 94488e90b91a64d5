#include "farm/http/frame_routes.h"

#include "farm/http/api_json.h"
#include "farm/http/http_server.h"
#include "farm/http/request_gate.h"
#include "farm/rendering/picture_store.h"

namespace farm {

FrameRoutes::FrameRoutes(RequestGate& gate, PictureStore& pictures)
    : m_gate(gate)
    , m_pictures(pictures)
{
}

void FrameRoutes::AddTo(HttpServer& server)
{
    server.Get("/api/v1/jobs/([^/]{1,64})/files",
        [this](const ApiRequest& request) { return ListPictures(request); });
    server.GetFile("/api/v1/jobs/([^/]{1,64})/files/([^/]{1,64})",
        [this](const ApiRequest& request) { return SendPicture(request); });
}

QJsonObject FrameRoutes::ListPictures(const ApiRequest& request)
{
    const auto pictures = m_pictures.List(m_gate.AuthorizeTransfer(request), request.PathPart());
    return DataJson(QJsonObject {{QStringLiteral("list"), PicturesJson(pictures)}});
}

FileAnswer FrameRoutes::SendPicture(const ApiRequest& request)
{
    const auto opened
        = m_pictures.Open(m_gate.AuthorizeTransfer(request), request.PathPart(), request.PathPart(2));
    return {opened.file, opened.picture.size, opened.picture.checksum};
}

} // namespace farm
