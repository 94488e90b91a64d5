#pragma once

#include "host/rendercore/submit/submit_task.h"

/// What the farm is told to make a job of a task, whose arguments are such that AreArguments() holds.
QJsonObject JobBody(const SubmitTask& task);

/// Whether what the task's files add to that is more than the farm takes in one request. Their checksums need not be
/// known yet.
bool AreTooManyFiles(const SubmitWork& work);
