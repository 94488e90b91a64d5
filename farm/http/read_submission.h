#pragma once

#include "farm/jobs/job_submission.h"

#include <QJsonObject>

namespace farm {

/// Reads the body of a submission.
/// Throws InvalidInput when a member is missing, has another type, is out of range or contradicts another one.
Submission ReadSubmission(const QJsonObject& body);

} // namespace farm
