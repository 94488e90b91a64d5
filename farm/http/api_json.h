#pragma once

#include "farm/accounts/account_store.h"
#include "farm/jobs/job_store.h"
#include "farm/rendering/frame_task.h"
#include "farm/uploads/upload_store.h"

#include <QJsonArray>
#include <QJsonObject>

/// The answers of the HTTP interface as JSON.
namespace farm {

QJsonObject SessionJson(const Session& session, std::int64_t sessionSeconds);
QJsonObject AccountJson(const Account& account);
QJsonArray ProjectsJson(const std::vector<Project>& projects);
QJsonObject JobPageJson(const JobPage& page);
QJsonObject JobInfoJson(const JobRecord& job, const JobPlan& plan);
QJsonObject UploadJson(const Upload& upload, int chunkSize);
QJsonArray PicturesJson(const std::vector<Picture>& pictures);
/// The answer that has this as its member "data".
QJsonObject DataJson(const QJsonValue& value);
QJsonObject ErrorJson(const char* word, const QString& message);

} // namespace farm
