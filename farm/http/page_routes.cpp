#include "farm/http/page_routes.h"

#include "farm/http/http_server.h"

namespace farm {

void AddPageTo(HttpServer& server)
{
    const auto serve
        = [](const char* text) { return [text](const ApiRequest&) { return QByteArray(text); }; };
    server.GetText("/", "text/html; charset=utf-8", serve(PageDocument));
    server.GetText("/page\\.js", "text/javascript; charset=utf-8", serve(PageScript));
    server.GetText("/page\\.css", "text/css; charset=utf-8", serve(PageStyle));
}

} // namespace farm
