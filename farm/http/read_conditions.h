#pragma once

#include "farm/jobs/job_conditions.h"

namespace farm {

/// Reads the conditions of a job-list request: a JSON object as text; an empty text imposes none.
/// Throws InvalidInput when the text is not an object or a value cannot be read.
JobConditions ReadJobConditions(const QByteArray& text);

} // namespace farm
