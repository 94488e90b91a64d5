#pragma once

#include <QString>

namespace farm {

/// A clause that says why a task will wait until somebody changes the cluster or the farm's settings; empty for
/// everyday reasons, such as the task's priority.
/// @param reason is Slurm's word for it.
QString HindranceIn(const QString& reason);

/// A clause about a limit that is reached at the moment, so that a task waits until others have ended; else empty.
QString ShortageIn(const QString& reason);

} // namespace farm
