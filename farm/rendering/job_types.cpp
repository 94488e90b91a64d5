#include "farm/rendering/job_types.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <stdexcept>

namespace farm {

namespace {

JobType ReadJobType(const QString& name, const QJsonObject& object)
{
    JobType type;
    type.program = object.value(QLatin1String("program")).toString();
    const QJsonArray arguments = object.value(QLatin1String("arguments")).toArray();
    for (const QJsonValue& argument : arguments)
        type.arguments.append(argument.toString());
    type.suffix = object.value(QLatin1String("suffix")).toString();
    type.frameTimeLimit = object.value(QLatin1String("frame_time_limit")).toInt(type.frameTimeLimit);
    type.confined = object.value(QLatin1String("confined")).toBool(true);
    if (type.program.isEmpty() || type.suffix.isEmpty() || type.frameTimeLimit < 1)
        throw std::runtime_error("the job type " + name.toStdString()
            + " needs a program, a suffix and a frame_time_limit of at least 1 second");
    return type;
}

QString FillInOne(const QString& text, const QMap<QString, QString>& values)
{
    static const QRegularExpression placeholder(QStringLiteral("\\{([a-z_]+)\\}"));
    QString filled;
    int copied = 0;
    auto matches = placeholder.globalMatch(text);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        filled += text.mid(copied, match.capturedStart() - copied);
        filled += values.value(match.captured(1), match.captured(0));
        copied = match.capturedEnd();
    }
    return filled + text.mid(copied);
}

} // namespace

JobTypes ReadJobTypes(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw std::runtime_error("cannot read the job types " + path.toStdString());
    QJsonParseError error {};
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &error);
    if (!document.isObject())
        throw std::runtime_error(
            path.toStdString() + " is not a JSON object: " + error.errorString().toStdString());
    const QJsonObject object = document.object();
    JobTypes types;
    for (auto entry = object.begin(); entry != object.end(); ++entry)
        types.insert(entry.key(), ReadJobType(entry.key(), entry.value().toObject()));
    return types;
}

QStringList FillIn(const QStringList& arguments, const QMap<QString, QString>& values)
{
    QStringList filled;
    for (const QString& argument : arguments)
        filled.append(FillInOne(argument, values));
    return filled;
}

} // namespace farm
