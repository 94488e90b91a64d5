#include "farm/runner/run_order.h"

#include "json/read_object.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSaveFile>

#include <algorithm>
#include <stdexcept>

namespace farm {

namespace {

const std::pair<RunEnd, const char*> EndWords[] = {
    {RunEnd::Done, "done"},
    {RunEnd::SceneFault, "scene_fault"},
    {RunEnd::TimeLimit, "time_limit"},
    {RunEnd::Cancelled, "cancelled"},
    {RunEnd::MachineLost, "machine_lost"},
    {RunEnd::Preempted, "preempted"},
    {RunEnd::LicenceMissing, "licence_missing"},
    {RunEnd::FarmFault, "farm_fault"},
};

QString WordOf(RunEnd end)
{
    const auto* const word = std::find_if(
        std::begin(EndWords), std::end(EndWords), [end](const auto& entry) { return entry.first == end; });
    return QLatin1String(word->second);
}

std::optional<RunEnd> EndOf(const QString& word)
{
    for (const auto& [end, known] : EndWords) {
        if (word == QLatin1String(known))
            return end;
    }
    return std::nullopt;
}

void Write(const QString& path, const QJsonObject& object)
{
    QSaveFile file(path);
    const QByteArray text = QJsonDocument(object).toJson();
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size() || !file.commit())
        throw std::runtime_error(
            "cannot write " + path.toStdString() + ": " + file.errorString().toStdString());
}

QJsonObject Read(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw std::runtime_error(
            "cannot read " + path.toStdString() + ": " + file.errorString().toStdString());
    const JsonRead read = ReadJsonObject(file.readAll());
    if (read.fault != nullptr)
        throw std::runtime_error(path.toStdString() + " " + read.fault);
    return read.object;
}

QJsonObject ResourcesJson(const Resources& resources)
{
    return {{QStringLiteral("cores"), resources.cores}, {QStringLiteral("memory"), qint64(resources.memory)},
        {QStringLiteral("gpus"), resources.gpus},
        {QStringLiteral("licences"), QJsonArray::fromStringList(resources.licences)},
        {QStringLiteral("time_limit"), qint64(resources.timeLimit.count())},
        {QStringLiteral("processes"), resources.processes},
        {QStringLiteral("file_size"), qint64(resources.fileSize)},
        {QStringLiteral("output_size"), qint64(resources.outputSize)}};
}

// Qt 5.15 reads JSON numbers as doubles, which hold all sizes and times that occur here.
std::int64_t WholeNumber(const QJsonValue& value)
{
    return static_cast<std::int64_t>(value.toDouble());
}

Resources ReadResources(const QJsonObject& object)
{
    Resources resources;
    resources.cores = object[QLatin1String("cores")].toInt();
    resources.memory = WholeNumber(object[QLatin1String("memory")]);
    resources.gpus = object[QLatin1String("gpus")].toInt();
    resources.licences = TextsIn(object[QLatin1String("licences")]);
    resources.timeLimit = std::chrono::seconds(WholeNumber(object[QLatin1String("time_limit")]));
    resources.processes = object[QLatin1String("processes")].toInt();
    resources.fileSize = WholeNumber(object[QLatin1String("file_size")]);
    // An order from an earlier version of the farm has none.
    resources.outputSize = WholeNumber(object[QLatin1String("output_size")]);
    return resources;
}

QJsonObject ReachJson(const Reach& reach)
{
    return {{QStringLiteral("confined"), reach.confined},
        {QStringLiteral("readable"), QJsonArray::fromStringList(reach.readable)},
        {QStringLiteral("writable"), QJsonArray::fromStringList(reach.writable)},
        {QStringLiteral("hidden"), reach.hidden}};
}

Reach ReadReach(const QJsonObject& object)
{
    return {object[QLatin1String("confined")].toBool(true), TextsIn(object[QLatin1String("readable")]),
        TextsIn(object[QLatin1String("writable")]), object[QLatin1String("hidden")].toString()};
}

} // namespace

QStringList TextsIn(const QJsonValue& list)
{
    QStringList texts;
    const QJsonArray array = list.toArray();
    for (const QJsonValue& text : array)
        texts.append(text.toString());
    return texts;
}

void WriteOrder(const RunOrder& order)
{
    Write(order.files.Order(),
        {{QStringLiteral("id"), order.id}, {QStringLiteral("program"), order.program},
            {QStringLiteral("arguments"), QJsonArray::fromStringList(order.arguments)},
            {QStringLiteral("folder"), order.folder},
            {QStringLiteral("resources"), ResourcesJson(order.resources)},
            {QStringLiteral("licence_missing"), order.licenceMissing},
            {QStringLiteral("reach"), ReachJson(order.reach)},
            {QStringLiteral("run_folder"), order.files.folder}, {QStringLiteral("user"), order.user}});
}

RunOrder ReadOrder(const QString& file)
{
    const QJsonObject object = Read(file);
    RunOrder order;
    order.id = object[QLatin1String("id")].toString();
    order.program = object[QLatin1String("program")].toString();
    order.arguments = TextsIn(object[QLatin1String("arguments")]);
    order.folder = object[QLatin1String("folder")].toString();
    order.resources = ReadResources(object[QLatin1String("resources")].toObject());
    order.licenceMissing = object[QLatin1String("licence_missing")].toString();
    order.reach = ReadReach(object[QLatin1String("reach")].toObject());
    order.files.folder = object[QLatin1String("run_folder")].toString();
    order.user = object[QLatin1String("user")].toString();
    if (order.program.isEmpty() || order.files.folder.isEmpty())
        throw std::runtime_error(file.toStdString() + " is not an order");
    return order;
}

void WriteOutcome(const QString& file, const RunResult& result)
{
    Write(file,
        {{QStringLiteral("end"), WordOf(result.end)}, {QStringLiteral("message"), result.message},
            {QStringLiteral("log"), result.log},
            {QStringLiteral("core_milliseconds"), qint64(result.coreMilliseconds)},
            {QStringLiteral("host"), result.host}, {QStringLiteral("seconds"), qint64(result.seconds)}});
}

std::optional<RunResult> ReadOutcome(const QString& file)
{
    QJsonObject object;
    try {
        object = Read(file);
    } catch (const std::runtime_error&) {
        return std::nullopt;
    }
    const auto end = EndOf(object[QLatin1String("end")].toString());
    if (!end)
        return std::nullopt;
    return RunResult {*end, object[QLatin1String("message")].toString(),
        object[QLatin1String("log")].toString(), WholeNumber(object[QLatin1String("core_milliseconds")]),
        object[QLatin1String("host")].toString(), WholeNumber(object[QLatin1String("seconds")])};
}

} // namespace farm
