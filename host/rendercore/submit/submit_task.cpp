#include "host/rendercore/submit/submit_task.h"

#include <QJsonArray>
#include <QSet>

#include <algorithm>

namespace {

const QString SceneKey = QStringLiteral("scene");
const QString FilesKey = QStringLiteral("files");
const QString MissingKey = QStringLiteral("missing");
const QString WidthKey = QStringLiteral("width");
const QString HeightKey = QStringLiteral("height");
const QString FrameStepKey = QStringLiteral("frameStep");
const QString PathKey = QStringLiteral("path");
const QString SourceKey = QStringLiteral("source");
const QString ChecksumKey = QStringLiteral("checksum");
const QString PackageKey = QStringLiteral("package");
const QString PackagesKey = QStringLiteral("packages");
const QString SizeKey = QStringLiteral("size");

QJsonObject FileToJson(const PackedFile& file)
{
    return {{PathKey, file.path}, {SourceKey, file.source}, {ChecksumKey, file.checksum},
        {PackageKey, file.package}};
}

PackedFile FileFromJson(const QJsonObject& json)
{
    PackedFile file;
    file.path = json.value(PathKey).toString();
    file.source = json.value(SourceKey).toString();
    file.checksum = json.value(ChecksumKey).toString();
    file.package = json.value(PackageKey).toInt(-1);
    return file;
}

Package PackageFromJson(const QJsonObject& json)
{
    Package package;
    package.checksum = json.value(ChecksumKey).toString();
    package.size = static_cast<qint64>(json.value(SizeKey).toDouble());
    return package;
}

} // namespace

bool SubmitWork::IsHashed() const
{
    return !files.isEmpty() && std::all_of(files.cbegin(), files.cend(), [this](const PackedFile& file) {
        return !file.checksum.isEmpty() && file.package < packages.size();
    }) && std::all_of(packages.cbegin(), packages.cend(), [](const Package& package) {
        return !package.checksum.isEmpty();
    });
}

QVector<int> SubmitWork::WantedPackages() const
{
    QSet<int> wanted;
    for (const PackedFile& file : files) {
        if (file.isWanted && file.package >= 0)
            wanted.insert(file.package);
    }
    QVector<int> list(wanted.cbegin(), wanted.cend());
    std::sort(list.begin(), list.end());
    return list;
}

QJsonObject SubmitWork::ToJson() const
{
    QJsonArray packed;
    for (const PackedFile& file : files)
        packed.append(FileToJson(file));
    QJsonArray lacking;
    for (const TaskMessage& reference : missing)
        lacking.append(reference.ToJson());
    QJsonArray archives;
    for (const Package& package : packages)
        archives.append(QJsonObject {{ChecksumKey, package.checksum}, {SizeKey, package.size}});
    return {{SceneKey, scene}, {FilesKey, packed}, {PackagesKey, archives}, {MissingKey, lacking},
        {WidthKey, width}, {HeightKey, height}, {FrameStepKey, frameStep}};
}

SubmitWork SubmitWork::FromJson(const QJsonObject& json)
{
    SubmitWork work;
    work.scene = json.value(SceneKey).toString();
    const QJsonArray packed = json.value(FilesKey).toArray();
    for (const QJsonValue& file : packed)
        work.files.append(FileFromJson(file.toObject()));
    const QJsonArray archives = json.value(PackagesKey).toArray();
    for (const QJsonValue& package : archives)
        work.packages.append(PackageFromJson(package.toObject()));
    const QJsonArray lacking = json.value(MissingKey).toArray();
    for (const QJsonValue& reference : lacking)
        work.missing.append(TaskMessage::FromJson(reference));
    work.width = json.value(WidthKey).toInt();
    work.height = json.value(HeightKey).toInt();
    work.frameStep = json.value(FrameStepKey).toInt(1);
    return work;
}
