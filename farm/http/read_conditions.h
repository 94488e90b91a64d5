#pragma once

#include "farm/jobs/job_conditions.h"

namespace farm {

/// Reads the conditions of a job-list request: a JSON object as text; an empty text is no condition.
/// Throws InvalidInput when the text is no object or a value cannot be read.
JobConditions ReadJobConditions(const QByteArray& text);

} // namespace farm
