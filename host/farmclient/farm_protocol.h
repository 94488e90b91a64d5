#pragma once

#include "host/farmclient/http_transport.h"

#include <QVariantHash>
#include <QVariantMap>

/// Translates the window's requests into HTTP requests and HTTP results into the window's answers.
namespace FarmProtocol {

/// The answer that the window receives: code 200 with the payload under "data", or another code with a "message".
struct Answer
{
    int code = 0;
    QVariantMap map;
};

/// @return whether the body of a successful answer is complete; if not, the code becomes FarmFault::NotJson.
using Check = bool (*)(const QJsonObject& body);

HttpRequest SignInRequest(const QString& name, const QString& password);
HttpRequest SignOutRequest(const QVariantHash& request);
HttpRequest UserInfoRequest(const QVariantHash& request);
HttpRequest ProjectListRequest(const QVariantHash& request);
HttpRequest JobListRequest(const QVariantHash& request);
HttpRequest JobInfoRequest(const QVariantHash& request);

/// @param action is the last segment of the path, for example "stop".
HttpRequest JobActionRequest(const QByteArray& action, const QVariantHash& request);

bool IsAnyObject(const QJsonObject& body);
bool IsSession(const QJsonObject& body);
bool IsUserInfo(const QJsonObject& body);
bool IsProjectList(const QJsonObject& body);
bool IsJobList(const QJsonObject& body);
bool IsJobInfo(const QJsonObject& body);

/// @param echo holds entries of the request that the answer repeats at top level, even on failure.
Answer Decode(const HttpResult& result, Check check, const QVariantMap& echo);

} // namespace FarmProtocol
