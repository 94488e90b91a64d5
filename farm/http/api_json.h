#pragma once

#include "farm/accounts/account_store.h"
#include "farm/accounts/project_store.h"
#include "farm/base/change_feed.h"
#include "farm/jobs/account_storage.h"
#include "farm/jobs/frame_store.h"
#include "farm/jobs/job_store.h"
#include "farm/rendering/picture.h"
#include "farm/uploads/upload_store.h"

#include <QJsonArray>
#include <QJsonObject>

/// The answers of the HTTP interface as JSON.
namespace farm {

struct FrameInWork;

QJsonObject SessionJson(const Session& session, std::int64_t sessionSeconds);
QJsonObject AccountJson(const Account& account);
QJsonObject SpendingJson(const std::vector<DaysSpending>& days);
QJsonArray ProjectsJson(const std::vector<Project>& projects);
QJsonObject JobJson(const JobRecord& job);
QJsonObject JobPageJson(const JobPage& page);
QJsonObject JobInfoJson(const JobRecord& job, const JobPlan& plan);
/// @param chunkSize is the most bytes that one request may append.
QJsonObject UploadJson(const Upload& upload, int chunkSize);
QJsonArray PackedFilesJson(const std::vector<PackedFile>& files);
QJsonArray PicturesJson(const std::vector<Picture>& pictures);
/// Each frame is an array, since a job may have thousands; docs/farm-api.md lists its values in order.
QJsonArray FramesJson(const std::vector<FrameRecord>& frames);
QJsonObject ChangesJson(const AccountChanges& changes);
/// How far the frame is in percent; null when that is unknown, or when too many logs would have to be read.
/// @param frames is the number of frames in the same answer.
QJsonValue PercentJson(const FrameInWork& frame, std::size_t frames);
QJsonObject StorageJson(const AccountStorage& storage, std::int64_t quota);
/// Wraps the value in an object as its member "data".
QJsonObject DataJson(const QJsonValue& value);
/// @param word is the error's name for programs, `message` its sentence for people.
QJsonObject ErrorJson(const char* word, const QString& message);

} // namespace farm
