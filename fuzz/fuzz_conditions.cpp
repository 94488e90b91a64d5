// Conditions of a job list: as anybody sends them, and as the window writes them.
#include "dialogs/vtr_conditions.h"
#include "farm/base/errors.h"
#include "farm/http/read_conditions.h"
#include "fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray input = Bytes(data, size);
    try {
        farm::ReadJobConditions(input);
    } catch (const farm::InvalidInput&) {
    }
    const QString text = QString::fromUtf8(input);
    VTSearchFields fields;
    fields.strName = text;
    const QString written = VTConditionText(VTSearchConditions(fields));
    Require(farm::ReadJobConditions(written.toUtf8()).nameContains == text.trimmed(),
        "a name is searched for as it was typed");
    Require(farm::ReadJobConditions(VTGroupConditionText({text}).toUtf8()).ids.has_value()
            || text.trimmed().isEmpty(),
        "a group is searched for by its ids");
    return 0;
}
