#include "farm/rendering/job_types.h"

#include "farm/runner/run_order.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <cmath>
#include <stdexcept>

namespace farm {

namespace {

constexpr std::int64_t MostOfAnything = 1'000'000;
constexpr std::int64_t LongestFrame = 100'000'000;      // s, three years
constexpr std::int64_t LargestSize = 1'000'000'000'000; // MiB

std::int64_t WholeNumber(const QJsonObject& object, const char* key, std::int64_t usual, std::int64_t least,
    std::int64_t most = MostOfAnything)
{
    const double number = object.value(QLatin1String(key)).toDouble(double(usual));
    if (!(number >= double(least) && number <= double(most)) || number != std::floor(number))
        throw std::runtime_error(std::string(key) + " must be a whole number from " + std::to_string(least)
            + " to " + std::to_string(most));
    return static_cast<std::int64_t>(number);
}

Resources ReadResources(const QJsonObject& object)
{
    constexpr std::int64_t Mebibyte = 1 << 20;
    const auto size = [&object](const char* key, std::int64_t usual, std::int64_t least) {
        return WholeNumber(object, key, usual / Mebibyte, least, LargestSize) * Mebibyte;
    };
    Resources resources;
    resources.cores = int(WholeNumber(object, "cores", resources.cores, 1));
    resources.memory = size("memory_mib", 0, 0);
    resources.gpus = int(WholeNumber(object, "gpus", 0, 0));
    resources.licences = TextsIn(object.value(QLatin1String("licences")));
    resources.timeLimit = std::chrono::seconds(
        WholeNumber(object, "frame_time_limit", resources.timeLimit.count(), 1, LongestFrame));
    resources.processes = int(WholeNumber(object, "processes", resources.processes, 1));
    resources.fileSize = size("file_size_mib", resources.fileSize, 1);
    resources.outputSize = size("output_mib", resources.fileSize, 1);
    return resources;
}

QMap<QString, QString> ReadSlurm(const QJsonObject& object)
{
    static const QStringList known {QStringLiteral("partition"), QStringLiteral("account"),
        QStringLiteral("qos"), QStringLiteral("constraint"), QStringLiteral("frames_per_task")};
    QMap<QString, QString> values;
    for (auto entry = object.begin(); entry != object.end(); ++entry) {
        if (!known.contains(entry.key()))
            throw std::runtime_error("slurm has no setting \"" + entry.key().toStdString() + '"');
        values.insert(entry.key(), entry->toVariant().toString());
    }
    if (object.contains(known.last()))
        values[known.last()] = QString::number(WholeNumber(object, "frames_per_task", 1, 1));
    return values;
}

QRegularExpression ReadExpression(const QJsonObject& object, const char* key)
{
    const QRegularExpression expression(object.value(QLatin1String(key)).toString());
    if (!expression.isValid())
        throw std::runtime_error(
            std::string(key) + " is not a regular expression: " + expression.errorString().toStdString());
    return expression;
}

QRegularExpression ReadProgress(const QJsonObject& object)
{
    const QRegularExpression expression = ReadExpression(object, "progress");
    const int groups = expression.captureCount();
    if (!expression.pattern().isEmpty() && (groups < 2 || groups % 2 != 0))
        throw std::runtime_error("progress must have two groups, or further pairs of them");
    return expression;
}

QString ReadScript(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw std::runtime_error("cannot read the script " + path.toStdString());
    return QString::fromUtf8(file.readAll());
}

/// @param folder of the file of job types, which holds their scripts as well.
JobType ReadJobType(const QString& name, const QJsonObject& object, const QDir& folder)
{
    JobType type;
    type.program = object.value(QLatin1String("program")).toString();
    type.arguments = TextsIn(object.value(QLatin1String("arguments")));
    type.suffix = object.value(QLatin1String("suffix")).toString();
    type.confined = object.value(QLatin1String("confined")).toBool(true);
    type.readable = TextsIn(object.value(QLatin1String("readable")));
    type.writable = TextsIn(object.value(QLatin1String("writable")));
    try {
        type.resources = ReadResources(object);
        type.framesAtOnce = int(WholeNumber(object, "frames_at_once", 0, 0));
        if (const QString script = object.value(QLatin1String("script")).toString(); !script.isEmpty())
            type.script = ReadScript(folder.filePath(script));
        type.progress = ReadProgress(object);
        type.licenceMissing = ReadExpression(object, "licence_missing");
        type.slurm = ReadSlurm(object.value(QLatin1String("slurm")).toObject());
    } catch (const std::runtime_error& error) {
        throw std::runtime_error("the job type " + name.toStdString() + ": " + error.what());
    }
    if (type.program.isEmpty() || type.suffix.isEmpty())
        throw std::runtime_error("the job type " + name.toStdString() + " needs a program and a suffix");
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
        filled += text.midRef(copied, match.capturedStart() - copied);
        filled += values.value(match.captured(1), match.captured(0));
        copied = match.capturedEnd();
    }
    return filled + text.midRef(copied);
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
    const QDir folder = QFileInfo(path).dir();
    JobTypes types;
    for (auto entry = object.begin(); entry != object.end(); ++entry)
        types.insert(entry.key(), ReadJobType(entry.key(), entry.value().toObject(), folder));
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
