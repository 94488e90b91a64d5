#pragma once

#include "host/farmclient/http_transport.h"

#include <QVariantHash>
#include <QVariantMap>

/// The farm's HTTP interface as values: client requests to HTTP requests, HTTP results to client answers.
namespace FarmProtocol {

/// What the client gets: 200 and the payload under "data", or another code and, where there is one, "message".
struct Answer
{
    int code = 0;
    QVariantMap map;
};

/// Says whether the body of a success is one; what is not becomes an answer of code HttpResult::NotJson.
using Check = bool (*)(const QJsonObject& body);

HttpRequest SignInRequest(const QString& name, const QString& password);
HttpRequest SignOutRequest(const QVariantHash& request);
HttpRequest UserInfoRequest(const QVariantHash& request);
HttpRequest ProjectListRequest(const QVariantHash& request);
HttpRequest JobListRequest(const QVariantHash& request);
HttpRequest JobInfoRequest(const QVariantHash& request);

/// @param action last part of the action's path, for example "stop".
HttpRequest JobActionRequest(const QByteArray& action, const QVariantHash& request);

bool IsAnyObject(const QJsonObject& body);
bool IsSession(const QJsonObject& body);
bool IsUserInfo(const QJsonObject& body);
bool IsProjectList(const QJsonObject& body);
bool IsJobList(const QJsonObject& body);
bool IsJobInfo(const QJsonObject& body);

/// @param echo entries of the request that the answer carries at top level, whether it failed or not.
Answer Decode(const HttpResult& result, Check check, const QVariantMap& echo);

} // namespace FarmProtocol
