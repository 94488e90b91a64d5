#pragma once

#include <QString>

namespace farm {

/// A clause about why a task will wait until somebody changes the cluster or the farm's settings; empty for the reasons
/// for which tasks wait every day, such as their priority.
/// @param reason is Slurm's word for it.
QString HindranceIn(const QString& reason);

/// A clause about a limit that is reached at the moment, so that a task waits until others have ended; else empty.
QString ShortageIn(const QString& reason);

} // namespace farm
