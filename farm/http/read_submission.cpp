#include "farm/http/read_submission.h"

#include "farm/base/errors.h"
#include "farm/base/safe_path.h"
#include "farm/http/json_input.h"
#include "storage/checksum.h"

#include <QJsonArray>
#include <QSet>

#include <algorithm>

namespace farm {

namespace {

constexpr int LongestSubmission = 64;
constexpr int LongestName = 256;
constexpr int MostFiles = 4000;
constexpr int MostRanges = 15;
constexpr int HighestFrame = 99999;
constexpr int MostFrames = 20000;
constexpr int MostPixels = 16384;

QString NonEmptyText(const QJsonObject& body, const char* key, int longest)
{
    const QString text = RequiredText(body, key, longest);
    if (text.isEmpty())
        throw InvalidInput(std::string(key) + " is empty");
    return text;
}

QJsonArray RequiredList(const QJsonObject& body, const char* key, int most)
{
    const QJsonValue value = body.value(QLatin1String(key));
    const QJsonArray list = value.toArray();
    if (!value.isArray() || list.isEmpty() || list.size() > most)
        throw InvalidInput(std::string(key) + " is missing, is not a list, is empty or is too long");
    return list;
}

// On the disk a path cannot be both a file and a folder.
void CheckFolders(const QSet<QString>& paths)
{
    for (const QString& path : paths) {
        for (int slash = path.indexOf(QLatin1Char('/')); slash >= 0;
             slash = path.indexOf(QLatin1Char('/'), slash + 1)) {
            if (paths.contains(path.left(slash)))
                throw InvalidInput("a path in files is also the folder of another one");
        }
    }
}

std::vector<JobFile> ReadFiles(const QJsonObject& body)
{
    std::vector<JobFile> files;
    QSet<QString> paths;
    const QJsonArray list = RequiredList(body, "files", MostFiles);
    for (const QJsonValue& value : list) {
        const JobFile file {
            value[QLatin1String("path")].toString(), value[QLatin1String("checksum")].toString()};
        if (!IsSafePath(file.path))
            throw InvalidInput("a path in files is not allowed");
        if (!storage::IsChecksum(file.checksum))
            throw InvalidInput("a checksum in files does not have 64 lower-case hexadecimal digits");
        if (paths.contains(file.path))
            throw InvalidInput("a path appears twice in files");
        paths.insert(file.path);
        files.push_back(file);
    }
    CheckFolders(paths);
    return files;
}

std::vector<FrameRange> ReadFrames(const QJsonObject& body)
{
    std::vector<FrameRange> ranges;
    const QJsonArray list = RequiredList(body, "frames", MostRanges);
    for (const QJsonValue& value : list) {
        const QJsonObject range = value.toObject();
        ranges.push_back({RequiredInteger(range, "start", 1, HighestFrame),
            RequiredInteger(range, "end", 1, HighestFrame)});
        if (range.contains(QLatin1String("step")))
            ranges.back().step = RequiredInteger(range, "step", 1, HighestFrame);
        if (ranges.back().last < ranges.back().first)
            throw InvalidInput("a range in frames ends before it starts");
    }
    ranges = Disjoint(ranges);
    if (FrameCount(ranges) > MostFrames)
        throw InvalidInput("the ranges in frames contain too many frames");
    return ranges;
}

} // namespace

Submission ReadSubmission(const QJsonObject& body)
{
    Submission submission;
    NewJob& job = submission.job;
    job.submission = NonEmptyText(body, "submission", LongestSubmission);
    job.type = RequiredText(body, "type", LongestName);
    job.name = NonEmptyText(body, "name", LongestName);
    if (body.contains(QLatin1String("pool")))
        submission.pool = RequiredText(body, "pool", LongestName);
    job.files = ReadFiles(body);
    job.scene = RequiredText(body, "scene", LongestSafePath);
    if (std::none_of(job.files.begin(), job.files.end(),
            [&job](const JobFile& file) { return file.path == job.scene; }))
        throw InvalidInput("scene is not one of the paths in files");
    job.frames = ReadFrames(body);
    job.width = RequiredInteger(body, "width", 1, MostPixels);
    job.height = RequiredInteger(body, "height", 1, MostPixels);
    const QJsonValue prerender = body.value(QLatin1String("prerender"));
    if (!prerender.isBool())
        throw InvalidInput("prerender is missing or is neither true nor false");
    job.prerender = prerender.toBool();
    if (body.contains(QLatin1String("priority")))
        job.priority = RequiredInteger(body, "priority", LowestPriority, HighestPriority);
    return submission;
}

} // namespace farm
