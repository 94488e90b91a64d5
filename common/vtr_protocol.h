#pragma once

#include <QLatin1String>
#include <QStringList>
#include <QVariantHash>
#include <QVariantMap>

/// Field names and result codes of the exchange with the farm.
namespace VTProtocol {

/// The only result code that means success.
inline constexpr int Success = 200;

// In every request. The values come from the sign-in answer.
inline const QLatin1String UserName("username");
inline const QLatin1String Token("token");

// Written by the window into a job-list request; the answer echoes "identifier" at its top level.
inline const QLatin1String Page("page");
inline const QLatin1String PageSize("pageSize");
inline const QLatin1String Identifier("identifier");
inline const QLatin1String Conditions("conditions");

// Written by the farm into its answers.
inline const QLatin1String Data("data");
inline const QLatin1String List("list");
inline const QLatin1String Total("total");
inline const QLatin1String LoginName("loginname");
inline const QLatin1String NotAllowedJobs("notAllowedJobs");

// Written by the window into a download order for the render core.
inline const QLatin1String OrderJobType("jobType");
inline const QLatin1String OrderSubDir("subDir");
inline const QLatin1String OrderManual("manual");

/// The two keys that every request carries.
QVariantHash SessionRequest(const QString& strUserName, const QString& strToken);

/// Adds job ids under "id[0]", "id[1]", … without gaps.
void AddJobIds(QVariantHash& mapRequest, const QStringList& lstJobId);

/// @return the payload of an answer; empty when there is none.
QVariantMap Payload(const QVariantMap& mapAnswer);

} // namespace VTProtocol
