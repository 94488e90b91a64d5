#include "host/farmclient/farm_protocol.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QUrl>

#include <algorithm>

namespace FarmProtocol {

namespace {

constexpr int kLongestJobList = 1000;
constexpr int kLongestToken = 4096;
constexpr int kLongestTarget = 4096; // the farm takes twice as much, what stands between may take less

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

/// A token goes into a header line: printable ASCII without blanks, or the line could be broken by it.
bool IsToken(const QString& text)
{
    return !text.isEmpty() && text.size() <= kLongestToken
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
    // Once is enough: the user waits for the end of the session, and the token expires by itself.
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
    if (target.size() <= kLongestTarget)
        return Get(target, request);
    const QJsonObject body {{QStringLiteral("page"), page}, {QStringLiteral("pageSize"), pageSize},
        {QStringLiteral("conditions"), conditions}};
    return {"POST", "/jobs/search", TokenOf(request), Json(body), true};
}

HttpRequest JobInfoRequest(const QVariantHash& request)
{
    QByteArray id = QUrl::toPercentEncoding(request.value(QStringLiteral("id")).toString());
    // An id of dots would be read as a way through the path, escaped or not; no job has one.
    if (id.count('.') == id.size())
        id.replace('.', '-');
    return Get("/jobs/" + id, request);
}

HttpRequest JobActionRequest(const QByteArray& action, const QVariantHash& request)
{
    QJsonArray ids;
    for (int i = 0; request.contains(QStringLiteral("id[%1]").arg(i)); ++i)
        ids.append(request.value(QStringLiteral("id[%1]").arg(i)).toString());
    return {"POST", "/jobs/" + action, TokenOf(request), Json({{QStringLiteral("ids"), ids}}), true};
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
    return list.isArray() && list.toArray().size() <= kLongestJobList
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
    if (answer.code == 200 && check(result.json)) {
        answer.map = result.json.toVariantMap();
    } else {
        if (answer.code == 200) {
            answer.code = HttpResult::NotJson;
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
