// The farm's answers, from the bytes of a body to the rows of the window.
#include "common/vtr_codetables.h"
#include "common/vtr_jobrow.h"
#include "common/vtr_protocol.h"
#include "fuzz/fuzz_support.h"
#include "host/farmclient/farm_protocol.h"
#include "json/read_object.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const VTCodeTables tables = [] {
        VTCodeTables filled;
        filled.Load();
        return filled;
    }();
    const HttpResult result {HttpStatus::Ok, ReadJsonObject(Bytes(data, size)).object, {}};
    for (const auto check : {FarmProtocol::IsAnyObject, FarmProtocol::IsSession, FarmProtocol::IsUserInfo,
             FarmProtocol::IsProjectList, FarmProtocol::IsJobList, FarmProtocol::IsJobInfo}) {
        const FarmProtocol::Answer answer = FarmProtocol::Decode(result, check, {});
        const QVariantList jobs = VTProtocol::Payload(answer.map).value(VTProtocol::List).toList();
        for (const QVariant& job : jobs) {
            const VTJobRecord record = VTJobRecord::FromMap(job.toMap());
            VTMakeJobRow(record, tables.mapJobStatus);
            tables.ProgressStyle(record.nProgress);
        }
    }
    return 0;
}
