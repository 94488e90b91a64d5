#pragma once

#include "account_store.h"
#include "job_store.h"

#include <QJsonArray>
#include <QJsonObject>

/// The answers of the HTTP interface as JSON.
namespace farm {

QJsonObject SessionJson(const Session& session, std::int64_t sessionSeconds);
QJsonObject AccountJson(const Account& account);
QJsonArray ProjectsJson(const std::vector<Project>& projects);
QJsonObject JobPageJson(const JobPage& page);
QJsonObject JobInfoJson(const JobRecord& job);
QJsonObject ErrorJson(const char* word, const QString& message);

} // namespace farm
