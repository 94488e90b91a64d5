// Bodies of submissions.
#include "farm/base/errors.h"
#include "farm/base/safe_path.h"
#include "farm/http/read_submission.h"
#include "fuzz/fuzz_support.h"
#include "json/read_object.h"

#include <algorithm>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    try {
        const farm::NewJob job = farm::ReadSubmission(ReadJsonObject(Bytes(data, size)).object).job;
        Require(std::all_of(job.files.begin(), job.files.end(),
                    [](const farm::JobFile& file) { return farm::IsSafePath(file.path); }),
            "all paths are safe");
        const int frames = farm::FrameCount(job.frames);
        Require(frames > 0 && frames <= 20000, "a job has 1 to 20,000 frames");
        Require(std::adjacent_find(job.frames.begin(), job.frames.end(),
                    [](const farm::FrameRange& one, const farm::FrameRange& next) {
                        return one.last >= next.first;
                    })
                == job.frames.end(),
            "ranges ascend and do not overlap");
    } catch (const farm::InvalidInput&) {
    }
    return 0;
}
