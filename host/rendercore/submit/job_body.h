#pragma once

#include "host/rendercore/submit/submit_task.h"

/// The request body that submits a task as a job. AreArguments() must hold for the task's arguments.
QJsonObject JobBody(const SubmitTask& task);

/// Whether the list of files is too long for one request to the farm. The checksums may still be unknown.
bool AreTooManyFiles(const SubmitWork& work);
