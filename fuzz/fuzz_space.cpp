// The farm's answers about the space that an account takes.
#include "fuzz/fuzz_support.h"
#include "host/space/farm_space.h"
#include "json/read_object.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto space = FarmSpace::Read(ReadJsonObject(Bytes(data, size)).object);
    if (!space)
        return 0;
    for (const qint64 bytes : {space->quota, space->used, space->uploads, space->unneeded, space->pictures})
        Require(bytes >= 0 && !SpaceText(bytes).isEmpty(), "a size can be shown");
    qint64 before = std::numeric_limits<qint64>::max();
    qint64 sum = 0;
    for (const FarmSpace::Job& job : space->jobs) {
        Require(!job.id.isEmpty(), "a job can be deleted");
        Require(job.files >= 0 && job.pictures >= 0 && job.files <= before, "the largest files come first");
        before = job.files;
        sum += job.files + job.pictures;
    }
    Require(sum >= 0, "sums fit");
    return 0;
}
