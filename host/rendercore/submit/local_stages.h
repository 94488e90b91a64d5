#pragma once

#include "host/rendercore/submit/stage_outcome.h"

class ChecksumCache;

// The stages that do not need the farm. They can take a long time and end early when the flag of the request is set.
// They throw TaskFailure when files cannot be read or written.

/// @param report is that of the program that reads scenes of this kind, if there is one.
StageOutcome AnalyzeStage(
    const StageRequest& request, const StageProgress& onProgress, const QByteArray& report = {});

/// Packs the files whose contents are new to this machine or to the farm. Files that the cache knows are packed only once
/// the farm has asked for them.
StageOutcome CompressStage(
    const StageRequest& request, const StageProgress& onProgress, ChecksumCache& cache);

StageOutcome ChecksumStage(const StageRequest& request, const StageProgress& onProgress);
