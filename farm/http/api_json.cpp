#include "farm/http/api_json.h"

#include "farm/base/local_time.h"
#include "farm/rendering/frames_in_work.h"

namespace farm {

QJsonObject SessionJson(const Session& session, std::int64_t sessionSeconds)
{
    const QJsonObject data {
        {QStringLiteral("token"), session.token},
        {QStringLiteral("expiresIn"), qint64(sessionSeconds)},
    };
    return {
        {QStringLiteral("loginname"), session.accountName},
        {QStringLiteral("username"), session.accountName},
        {QStringLiteral("data"), data},
    };
}

QJsonObject AccountJson(const Account& account)
{
    QJsonObject info;
    if (account.bound) {
        info.insert(QStringLiteral("username"), account.name);
        info.insert(QStringLiteral("user_rmb_balance"), MoneyText(account.balance));
        info.insert(QStringLiteral("user_vso_balance"), MoneyText(account.secondBalance));
    } else {
        info.insert(QStringLiteral("user_balance"), MoneyText(account.balance).toDouble());
    }
    return {{QStringLiteral("isBindToVso"), account.bound}, {QStringLiteral("userInfo"), info}};
}

QJsonObject SpendingJson(const std::vector<DaysSpending>& days)
{
    QJsonArray list;
    for (const DaysSpending& spent : days) {
        list.append(QJsonObject {
            {QStringLiteral("day"), spent.day.toString(Qt::ISODate)},
            {QStringLiteral("amount"), MoneyText(spent.amount)},
        });
    }
    return {{QStringLiteral("currency"), Currency()}, {QStringLiteral("days"), list}};
}

QJsonArray ProjectsJson(const std::vector<Project>& projects)
{
    QJsonArray list;
    for (const Project& project : projects) {
        list.append(QJsonObject {
            {QStringLiteral("project_name"), project.name},
            {QStringLiteral("project_pool"), project.pool},
        });
    }
    return list;
}

QJsonObject JobJson(const JobRecord& job)
{
    return {
        {QStringLiteral("job_increasement"), QString::number(job.number)},
        {QStringLiteral("job_id"), job.id},
        {QStringLiteral("job_type"), job.type},
        {QStringLiteral("job_name"), job.name},
        {QStringLiteral("job_submit_time"), TimeText(job.submittedAt)},
        {QStringLiteral("job_progress"), job.progress},
        {QStringLiteral("job_status"), job.status},
        {QStringLiteral("job_cost"), MoneyText(job.cost)},
        {QStringLiteral("job_cost_unit"), Currency()},
    };
}

QJsonObject JobPageJson(const JobPage& page)
{
    QJsonArray list;
    for (const JobRecord& job : page.jobs)
        list.append(JobJson(job));
    return {{QStringLiteral("list"), list}, {QStringLiteral("total"), qint64(page.total)}};
}

QJsonObject JobInfoJson(const JobRecord& job, const JobPlan& plan)
{
    QJsonArray frames;
    for (const FrameRange& range : plan.frames) {
        QJsonObject member {{QStringLiteral("start"), range.first}, {QStringLiteral("end"), range.last}};
        if (range.step > 1)
            member.insert(QStringLiteral("step"), range.step);
        frames.append(member);
    }
    return {
        {QStringLiteral("jobId"), job.id},
        {QStringLiteral("jobType"), job.type},
        {QStringLiteral("jobName"), job.name},
        {QStringLiteral("jobStatus"), job.status},
        {QStringLiteral("jobProgress"), job.progress},
        {QStringLiteral("jobMessage"), job.message},
        {QStringLiteral("jobFrames"), frames},
        {QStringLiteral("jobWidth"), plan.width},
        {QStringLiteral("jobHeight"), plan.height},
        {QStringLiteral("jobPrerender"), plan.prerender},
        {QStringLiteral("jobPriority"), plan.priority},
    };
}

QJsonObject UploadJson(const Upload& upload, int chunkSize)
{
    return {
        {QStringLiteral("id"), upload.id},
        {QStringLiteral("size"), qint64(upload.size)},
        {QStringLiteral("offset"), qint64(upload.offset)},
        {QStringLiteral("chunkSize"), chunkSize},
        {QStringLiteral("unpacked"), upload.unpacked},
    };
}

QJsonArray PackedFilesJson(const std::vector<PackedFile>& files)
{
    QJsonArray list;
    for (const PackedFile& file : files) {
        list.append(QJsonObject {
            {QStringLiteral("path"), file.path},
            {QStringLiteral("size"), file.size},
            {QStringLiteral("checksum"), file.checksum},
        });
    }
    return list;
}

QJsonArray PicturesJson(const std::vector<Picture>& pictures)
{
    QJsonArray list;
    for (const Picture& picture : pictures) {
        list.append(QJsonObject {
            {QStringLiteral("name"), picture.name},
            {QStringLiteral("size"), qint64(picture.size)},
            {QStringLiteral("checksum"), picture.checksum},
        });
    }
    return list;
}

QJsonArray FramesJson(const std::vector<FrameRecord>& frames)
{
    QJsonArray list;
    for (const FrameRecord& frame : frames)
        list.append(QJsonArray {frame.number, int(frame.state), frame.attempts,
            qint64(frame.coreMilliseconds), qint64(frame.cost), frame.file, qint64(frame.size)});
    return list;
}

QJsonObject ChangesJson(const AccountChanges& changes)
{
    QJsonArray jobs;
    for (const QString& id : changes.jobs)
        jobs.append(id);
    return {{QStringLiteral("jobs"), jobs}, {QStringLiteral("list"), changes.list}};
}

QJsonValue PercentJson(const FrameInWork& frame, std::size_t frames)
{
    constexpr std::size_t MostLogs = 100;
    const auto percent = frames <= MostLogs ? frame.progress.Percent() : std::nullopt;
    return percent ? QJsonValue(*percent) : QJsonValue();
}

QJsonObject StorageJson(const AccountStorage& storage, std::int64_t quota)
{
    QJsonArray jobs;
    for (const AccountStorage::Job& job : storage.jobs) {
        jobs.append(QJsonObject {
            {QStringLiteral("job_id"), job.id},
            {QStringLiteral("job_increasement"), QString::number(job.number)},
            {QStringLiteral("job_name"), job.name},
            {QStringLiteral("job_status"), job.status},
            {QStringLiteral("files"), qint64(job.sceneBytes)},
            {QStringLiteral("pictures"), qint64(job.pictureBytes)},
        });
    }
    return {
        {QStringLiteral("quota"), qint64(quota)},
        {QStringLiteral("used"), qint64(storage.contents + storage.uploads)},
        {QStringLiteral("uploads"), qint64(storage.uploads)},
        {QStringLiteral("unneeded"), qint64(storage.unneeded)},
        {QStringLiteral("pictures"), qint64(storage.pictures)},
        {QStringLiteral("jobs"), jobs},
        {QStringLiteral("moreJobs"), storage.hasMoreJobs},
    };
}

QJsonObject DataJson(const QJsonValue& value)
{
    return {{QStringLiteral("data"), value}};
}

QJsonObject ErrorJson(const char* word, const QString& message)
{
    return {{QStringLiteral("error"), QLatin1String(word)}, {QStringLiteral("message"), message}};
}

} // namespace farm
