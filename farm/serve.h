#pragma once

#include "farm/farm.h"

#include <functional>

namespace farm {

/// Serves until SIGTERM or SIGINT and, with `stopWithStdin`, until the end of standard input. Needs the application's
/// event loop. Returns the program's exit code.
/// @param reload reads the settings again after SIGHUP; the farm takes those over that Farm::TakeOver() names.
int Serve(const FarmSettings& settings, bool stopWithStdin, const std::function<FarmSettings()>& reload);

} // namespace farm
