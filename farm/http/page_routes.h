#pragma once

namespace farm {

class HttpServer;

/// The page for administrators, from the folder "page"; the build puts it into the program.
extern const char* const PageDocument;
extern const char* const PageScript;
extern const char* const PageStyle;

/// Adds the files of the page. They hold nothing of the farm; what the page shows needs a session.
void AddPageTo(HttpServer& server);

} // namespace farm
