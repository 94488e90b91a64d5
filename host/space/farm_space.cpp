#include "host/space/farm_space.h"

#include "host/farmclient/farm_numbers.h"

#include <QJsonArray>
#include <QLocale>

#include <algorithm>

namespace {

constexpr int Deleted = 5;        // a job's status
constexpr int LongestNumber = 20; // characters
constexpr qint64 Kibibyte = 1024;

qint64 BytesOf(const QJsonObject& object, const char* key)
{
    return qint64(std::clamp(object.value(QLatin1String(key)).toDouble(), 0.0, FarmNumbers::LargestSize));
}

FarmSpace::Job ReadJob(const QJsonObject& object)
{
    FarmSpace::Job job;
    job.id = object.value(QLatin1String("job_id")).toString();
    job.number = object.value(QLatin1String("job_increasement")).toString().left(LongestNumber);
    job.name = object.value(QLatin1String("job_name")).toString().left(FarmNumbers::LongestName);
    job.status = object.value(QLatin1String("job_status")).toInt();
    job.files = BytesOf(object, "files");
    job.pictures = BytesOf(object, "pictures");
    return job;
}

} // namespace

std::optional<FarmSpace> FarmSpace::Read(const QJsonObject& body)
{
    const QJsonObject data = body.value(QLatin1String("data")).toObject();
    const QJsonArray jobs = data.value(QLatin1String("jobs")).toArray();
    if (!data.value(QLatin1String("quota")).isDouble() || jobs.size() > FarmNumbers::MostListedJobs)
        return std::nullopt;
    FarmSpace space;
    space.quota = BytesOf(data, "quota");
    space.used = BytesOf(data, "used");
    space.uploads = BytesOf(data, "uploads");
    space.unneeded = BytesOf(data, "unneeded");
    space.pictures = BytesOf(data, "pictures");
    space.hasMoreJobs = data.value(QLatin1String("moreJobs")).toBool();
    for (const QJsonValue& value : jobs) {
        const Job job = ReadJob(value.toObject());
        // A deleted job is left out: the farm frees its files a little later.
        if (!job.id.isEmpty() && job.status != Deleted && job.files + job.pictures > 0)
            space.jobs.push_back(job);
    }
    // The farm counts pictures as well, but only files use up the quota.
    std::stable_sort(space.jobs.begin(), space.jobs.end(),
        [](const Job& one, const Job& other) { return one.files > other.files; });
    return space;
}

QString SpaceText(qint64 bytes)
{
    return bytes < Kibibyte ? QStringLiteral("%1 B").arg(bytes)
                            : QLocale::c().formattedDataSize(bytes, 1, QLocale::DataSizeIecFormat);
}
