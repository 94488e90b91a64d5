// Range and If-Match headers.
#include "farm/http/byte_range.h"
#include "fuzz/fuzz_support.h"

#include <limits>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray header = Bytes(data, size);
    for (const std::int64_t bytes :
        {std::int64_t {0}, std::int64_t {1}, std::int64_t {5000}, std::numeric_limits<std::int64_t>::max()}) {
        const auto range = farm::ParseRange(header, bytes);
        if (!range)
            continue;
        Require(range->offset >= 0 && range->length > 0 && range->length <= bytes - range->offset,
            "a range lies within its file");
        farm::ContentRange(*range, bytes);
    }
    Require(!farm::NamesTag(header, "\"tag\"") || header.contains("\"tag\"") || header.contains('*'),
        "only a named tag matches");
    return 0;
}
