#pragma once

#include "host/rendercore/submit/stage_outcome.h"

// The stages that do not need the farm. They can take a long time and end early when the flag of the request is set.
// They throw std::runtime_error, with an English sentence, when files cannot be read or written.

StageOutcome AnalyzeStage(const StageRequest& request, const StageProgress& onProgress);
StageOutcome CompressStage(const StageRequest& request, const StageProgress& onProgress);
StageOutcome ChecksumStage(const StageRequest& request, const StageProgress& onProgress);
