// The farm's stream of events, in pieces of any size.
#include "fuzz/fuzz_support.h"
#include "host/farmclient/event_stream.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes = Bytes(data, size);
    EventStream whole;
    const QByteArrayList events = whole.Read(bytes);
    for (const QByteArray& event : events) {
        Require(event.size() <= EventStream::Longest, "an event is not too long");
        FarmChanges::Read(event);
    }
    EventStream pieces;
    QByteArrayList read;
    const int piece = 1 + (size > 0 ? data[0] % 7 : 0);
    for (int begin = 0; begin < bytes.size(); begin += piece)
        read += pieces.Read(bytes.mid(begin, piece));
    Require(
        read == events && pieces.IsTooLong() == whole.IsTooLong(), "the size of the pieces does not matter");
    return 0;
}
