#include "host/rendercore/submit/job_body.h"

#include "host/farmclient/farm_numbers.h"
#include "host/rendercore/submit/scene_analysis.h"
#include "host/rendercore/submit/submit_arguments.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>

namespace {

QJsonObject FileMembers(const QString& path, const QString& checksum)
{
    return {{QStringLiteral("path"), path}, {QStringLiteral("checksum"), checksum}};
}

} // namespace

QJsonObject JobBody(const SubmitTask& task)
{
    QJsonArray files;
    for (const PackedFile& file : task.work.files)
        files.append(FileMembers(file.path, file.checksum));
    // Ranges set by the user have no step.
    const int step = task.areArgumentsEdited ? 1 : task.work.frameStep;
    QJsonObject job = JobMembers(task.arguments, task.work.width, task.work.height, step);
    job.insert(QStringLiteral("submission"), task.submission);
    job.insert(QStringLiteral("type"), JobTypeOf(task.scene));
    job.insert(
        QStringLiteral("name"), QFileInfo(task.scene).completeBaseName().left(FarmNumbers::LongestName));
    job.insert(QStringLiteral("priority"), task.priority);
    job.insert(QStringLiteral("scene"), task.work.scene);
    job.insert(QStringLiteral("files"), files);
    return job;
}

bool AreTooManyFiles(const SubmitWork& work)
{
    const QString checksum(FarmNumbers::ChecksumLength, QLatin1Char('0'));
    QJsonArray files;
    for (const PackedFile& file : work.files)
        files.append(FileMembers(file.path, checksum));
    return QJsonDocument(files).toJson(QJsonDocument::Compact).size() > FarmNumbers::MostFileListBytes;
}
