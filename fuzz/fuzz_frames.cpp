// The farm's answers to requests for frames, first all of them and then changes.
#include "fuzz/fuzz_support.h"
#include "host/frames/chart_layout.h"
#include "host/frames/frame_list.h"
#include "json/read_object.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FrameList list;
    const QList<QByteArray> answers = Bytes(data, size).split('\n');
    for (const QByteArray& body : answers) {
        const JsonRead read = ReadJsonObject(body);
        SpendingAnswer::Read(read.object);
        const auto answer = FramesAnswer::Read(read.object);
        if (!answer)
            continue;
        for (const int row : list.Apply(*answer).rows)
            Require(row >= 0 && row < int(list.Frames().size()), "a changed row is there");
    }
    std::vector<double> times;
    int before = 0;
    for (const Frame& frame : list.Frames()) {
        Require(frame.number > before, "numbers ascend");
        Require(!frame.file.contains(QLatin1Char('/')), "a picture's name is no path");
        before = frame.number;
        times.push_back(double(frame.milliseconds));
    }
    for (const ChartBar& bar : ChartLayout::Of(times, {300, 100}).bars)
        Require(bar.height >= 0 && bar.height <= 100 && bar.x + bar.width <= 300, "a bar lies in its room");
    return 0;
}
