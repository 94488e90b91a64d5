#include "host/farmclient/farm_protocol.h"

#include "host/farmclient/farm_numbers.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QUrl>

#include <algorithm>

namespace FarmProtocol {

namespace {

QByteArray TokenOf(const QVariantHash& request)
{
    return request.value(QStringLiteral("token")).toString().toLatin1();
}

HttpRequest Get(const QByteArray& target, const QVariantHash& request)
{
    return {"GET", target, TokenOf(request), {}, true};
}

QByteArray Json(const QJsonObject& object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

QJsonValue Data(const QJsonObject& body)
{
    return body.value(QLatin1String("data"));
}

QJsonValue Data(const QJsonObject& body, QLatin1String key)
{
    return Data(body).toObject().value(key);
}

/// A token becomes part of a header line, so it must be printable ASCII without blanks.
bool IsToken(const QString& text)
{
    return !text.isEmpty() && text.size() <= FarmNumbers::LongestToken
        && std::all_of(
            text.begin(), text.end(), [](QChar c) { return c.unicode() > 32 && c.unicode() < 127; });
}

} // namespace

HttpRequest SignInRequest(const QString& name, const QString& password)
{
    const QJsonObject body {{QStringLiteral("username"), name}, {QStringLiteral("password"), password}};
    return {"POST", "/session", {}, Json(body), false};
}

HttpRequest SignOutRequest(const QVariantHash& request)
{
    // Never repeated: the user is waiting for the sign-out, and the token expires anyway.
    return {"DELETE", "/session", TokenOf(request), {}, false};
}

HttpRequest UserInfoRequest(const QVariantHash& request)
{
    return Get("/account", request);
}

HttpRequest ProjectListRequest(const QVariantHash& request)
{
    return Get("/projects", request);
}

HttpRequest JobListRequest(const QVariantHash& request)
{
    const int page = request.value(QStringLiteral("page")).toInt();
    const int pageSize = request.value(QStringLiteral("pageSize")).toInt();
    QByteArray target
        = "/jobs?page=" + QByteArray::number(page) + "&pageSize=" + QByteArray::number(pageSize);
    const QString conditions = request.value(QStringLiteral("conditions")).toString();
    if (!conditions.isEmpty())
        target += "&conditions=" + QUrl::toPercentEncoding(conditions);
    if (target.size() <= FarmNumbers::LongestTarget)
        return Get(target, request);
    const QJsonObject body {{QStringLiteral("page"), page}, {QStringLiteral("pageSize"), pageSize},
        {QStringLiteral("conditions"), conditions}};
    return {"POST", "/jobs/search", TokenOf(request), Json(body), true};
}

HttpRequest JobInfoRequest(const QVariantHash& request)
{
    QByteArray id = QUrl::toPercentEncoding(request.value(QStringLiteral("id")).toString());
    // Even escaped, dots alone would be resolved as a relative path; no job has such an id.
    if (id.count('.') == id.size())
        id.replace('.', '-');
    return Get("/jobs/" + id, request);
}

HttpRequest JobActionRequest(const QByteArray& action, const QVariantHash& request)
{
    QJsonArray ids;
    for (int i = 0; request.contains(QStringLiteral("id[%1]").arg(i)); ++i)
        ids.append(request.value(QStringLiteral("id[%1]").arg(i)).toString());
    // A restart that arrived, but whose answer was lost, would throw away what has been rendered since.
    const bool isRepeatable = action != "restart";
    return {"POST", "/jobs/" + action, TokenOf(request), Json({{QStringLiteral("ids"), ids}}), isRepeatable};
}

bool IsAnyObject(const QJsonObject& body)
{
    Q_UNUSED(body)
    return true;
}

bool IsSession(const QJsonObject& body)
{
    return !body.value(QLatin1String("loginname")).toString().isEmpty()
        && !body.value(QLatin1String("username")).toString().isEmpty()
        && IsToken(Data(body, QLatin1String("token")).toString());
}

bool IsUserInfo(const QJsonObject& body)
{
    return Data(body, QLatin1String("userInfo")).isObject();
}

bool IsProjectList(const QJsonObject& body)
{
    return Data(body).isArray();
}

bool IsJobList(const QJsonObject& body)
{
    const QJsonValue list = Data(body, QLatin1String("list"));
    return list.isArray() && list.toArray().size() <= FarmNumbers::MostListedJobs
        && Data(body, QLatin1String("total")).toInt(-1) >= 0;
}

bool IsJobInfo(const QJsonObject& body)
{
    return Data(body, QLatin1String("jobDatas")).isObject();
}

Answer Decode(const HttpResult& result, Check check, const QVariantMap& echo)
{
    Answer answer {result.status, {}};
    QString message = result.error;
    if (answer.code == HttpStatus::Ok && check(result.json)) {
        answer.map = result.json.toVariantMap();
    } else {
        if (answer.code == HttpStatus::Ok) {
            answer.code = FarmFault::NotJson;
            message = QCoreApplication::translate("FarmProtocol", "The server's answer is incomplete.");
        } else if (Data(result.json).isObject()) {
            answer.map.insert(QStringLiteral("data"), Data(result.json).toVariant());
        }
        answer.map.insert(QStringLiteral("message"), message);
    }
    for (auto entry = echo.begin(); entry != echo.end(); ++entry)
        answer.map.insert(entry.key(), entry.value());
    return answer;
}

} // namespace FarmProtocol
