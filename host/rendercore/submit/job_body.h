#pragma once

#include "host/rendercore/submit/submit_task.h"

/// The body of the request that makes a job of a task. AreArguments() must hold for the task's arguments.
QJsonObject JobBody(const SubmitTask& task);

/// Whether the list of files is too long for one request to the farm. The checksums need not be known yet.
bool AreTooManyFiles(const SubmitWork& work);
