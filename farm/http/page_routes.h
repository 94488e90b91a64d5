#pragma once

namespace farm {

class HttpServer;

/// The page for administrators, from the folder "page"; the build puts it into the program.
extern const char* const PageDocument;
extern const char* const PageScript;
extern const char* const PageStyle;

/// Adds the files of the page. They contain no data of the farm; the page needs a session to show any.
void AddPageTo(HttpServer& server);

} // namespace farm
