#pragma once

#include "host/rendercore/submit/stage_outcome.h"

// The stages that need no farm. Each takes the time that it takes and looks at the order's flag in between.
// They throw std::runtime_error, with an English sentence, when files cannot be read or written.

StageOutcome AnalyzeStage(const StageRequest& request, const StageProgress& onProgress);
StageOutcome CompressStage(const StageRequest& request, const StageProgress& onProgress);
StageOutcome ChecksumStage(const StageRequest& request, const StageProgress& onProgress);
