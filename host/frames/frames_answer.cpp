#include "host/frames/frames_answer.h"

#include "host/farmclient/farm_numbers.h"

#include <QJsonArray>

#include <algorithm>
#include <tuple>

namespace {

constexpr int MostDays = 366;
constexpr int LongestName = 255;
constexpr int LongestWord = 24; // characters of amounts, currencies and days
constexpr double MostAmount = 1e12;
constexpr int Second = 1000; // ms

/// The indexes of a frame's values in the answer.
enum Place { Number, State, Attempts, Milliseconds, Cost, File, Size, PlaceCount };

qint64 WholeNumber(const QJsonValue& value)
{
    constexpr double LargestExact = 9007199254740991.0;
    const double number = value.toDouble();
    return number >= 0 && number <= LargestExact ? qint64(number) : 0;
}

/// The text, cut off where it would not fit into the window.
QString Word(const QJsonValue& value)
{
    return value.toString().left(LongestWord);
}

/// @return 0 for an amount that cannot be drawn.
double Amount(const QJsonValue& value)
{
    const double amount = value.toString().toDouble();
    return amount >= 0 && amount <= MostAmount ? amount : 0;
}

Frame::State StateOf(int code)
{
    return code == Frame::Finished || code == Frame::Failed ? Frame::State(code) : Frame::Waiting;
}

Frame ReadFrame(const QJsonArray& values)
{
    Frame frame;
    frame.number = values.at(Number).toInt();
    frame.state = StateOf(values.at(State).toInt());
    frame.attempts = values.at(Attempts).toInt();
    frame.milliseconds = WholeNumber(values.at(Milliseconds));
    frame.cost = WholeNumber(values.at(Cost));
    frame.size = WholeNumber(values.at(Size));
    const QString file = values.at(File).toString();
    if (file.size() <= LongestName && !file.contains(QLatin1Char('/')))
        frame.file = file;
    return frame;
}

} // namespace

bool operator==(const Frame& one, const Frame& other)
{
    const auto values = [](const Frame& frame) {
        return std::tie(frame.number, frame.state, frame.attempts, frame.milliseconds, frame.cost, frame.file,
            frame.size, frame.percent);
    };
    return values(one) == values(other);
}

std::optional<FramesAnswer> FramesAnswer::Read(const QJsonObject& body)
{
    const QJsonObject data = body.value(QLatin1String("data")).toObject();
    const QJsonObject job = data.value(QLatin1String("job")).toObject();
    const QJsonArray frames = data.value(QLatin1String("frames")).toArray();
    if (job.isEmpty() || frames.size() > FarmNumbers::MostFrames)
        return std::nullopt;
    FramesAnswer answer;
    answer.jobStatus = job.value(QLatin1String("job_status")).toInt();
    answer.jobCost = Word(job.value(QLatin1String("job_cost"))) + QLatin1Char(' ')
        + Word(job.value(QLatin1String("job_cost_unit")));
    answer.message = data.value(QLatin1String("message")).toString();
    const QJsonValue priority = data.value(QLatin1String("priority"));
    if (priority.isDouble())
        answer.priority
            = std::clamp(priority.toInt(), FarmNumbers::LowestPriority, FarmNumbers::HighestPriority);
    answer.time = WholeNumber(data.value(QLatin1String("time")));
    answer.total = data.value(QLatin1String("total")).toInt();
    for (const QJsonValue& value : frames) {
        const QJsonArray values = value.toArray();
        const int before = answer.frames.empty() ? 0 : answer.frames.back().number;
        if (values.size() == PlaceCount && values.at(Number).toInt() > before)
            answer.frames.push_back(ReadFrame(values));
    }
    const QJsonArray rendering = data.value(QLatin1String("rendering")).toArray();
    for (const QJsonValue& value : rendering) {
        const int percent = std::clamp(value[3].toInt(-1), -1, 100);
        answer.rendering[value[Number].toInt()] = {WholeNumber(value[1]) * Second, percent};
    }
    return answer;
}

SpendingAnswer SpendingAnswer::Read(const QJsonObject& body)
{
    const QJsonObject data = body.value(QLatin1String("data")).toObject();
    SpendingAnswer answer {Word(data.value(QLatin1String("currency"))), {}};
    const QJsonArray days = data.value(QLatin1String("days")).toArray();
    for (const QJsonValue& day : days) {
        if (answer.days.size() < MostDays)
            answer.days.push_back({Word(day[QLatin1String("day")]), Amount(day[QLatin1String("amount")])});
    }
    return answer;
}
