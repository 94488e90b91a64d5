#pragma once

#include <QString>

namespace farm {

/// Says in a clause why a task will wait until somebody changes the cluster or the farm's settings; empty for the reasons
/// for which tasks wait every day, such as their priority.
/// @param reason is Slurm's word for it.
QString HindranceIn(const QString& reason);

/// The same for limits that are reached at the moment, for which a task waits until others have ended.
QString ShortageIn(const QString& reason);

} // namespace farm
