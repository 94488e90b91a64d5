// File names with tokens. The first line of the input is the pattern, the second one a name.
#include "fuzz/fuzz_support.h"
#include "host/rendercore/submit/file_pattern.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString input = QString::fromUtf8(Bytes(data, size));
    const QString form = input.section(QLatin1Char('\n'), 0, 0);
    const QString name = input.section(QLatin1Char('\n'), 1, 1);
    for (const bool isSequence : {false, true}) {
        const FilePattern pattern(form, isSequence);
        Require(
            !pattern.Matches(name) || name.startsWith(pattern.Prefix()), "matching names share the prefix");
        Require(pattern.HasTokens() || pattern.Matches(form), "a name without tokens matches itself");
    }
    return 0;
}
