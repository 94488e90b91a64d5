#pragma once

#include "farm/farm.h"

#include <functional>

namespace farm {

/// Serves until SIGTERM or SIGINT and, with `stopWithStdin`, until the end of standard input. Needs the application's
/// event loop. Returns the program's exit code.
/// @param reload reads the settings again after SIGHUP and hands them to the farm; it throws to keep the old ones.
int Serve(const FarmSettings& settings, bool stopWithStdin, const std::function<void(Farm&)>& reload);

} // namespace farm
