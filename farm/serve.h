#pragma once

#include "farm/farm.h"

namespace farm {

/// Serves until SIGTERM or SIGINT and, with `stopWithStdin`, until the end of standard input. Needs the application's
/// event loop. Returns the program's exit code.
int Serve(const FarmSettings& settings, bool stopWithStdin);

} // namespace farm
