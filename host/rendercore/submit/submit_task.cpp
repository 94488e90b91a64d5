#include "host/rendercore/submit/submit_task.h"

#include <QJsonArray>

#include <algorithm>

namespace {

const QString SceneKey = QStringLiteral("scene");
const QString FilesKey = QStringLiteral("files");
const QString MissingKey = QStringLiteral("missing");
const QString WidthKey = QStringLiteral("width");
const QString HeightKey = QStringLiteral("height");
const QString PathKey = QStringLiteral("path");
const QString SourceKey = QStringLiteral("source");
const QString ChecksumKey = QStringLiteral("checksum");
const QString PackageChecksumKey = QStringLiteral("packageChecksum");
const QString PackageSizeKey = QStringLiteral("packageSize");

QJsonObject FileToJson(const PackedFile& file)
{
    return {{PathKey, file.path}, {SourceKey, file.source}, {ChecksumKey, file.checksum},
        {PackageChecksumKey, file.packageChecksum}, {PackageSizeKey, file.packageSize}};
}

PackedFile FileFromJson(const QJsonObject& json)
{
    PackedFile file;
    file.path = json.value(PathKey).toString();
    file.source = json.value(SourceKey).toString();
    file.checksum = json.value(ChecksumKey).toString();
    file.packageChecksum = json.value(PackageChecksumKey).toString();
    file.packageSize = static_cast<qint64>(json.value(PackageSizeKey).toDouble());
    return file;
}

} // namespace

bool SubmitWork::IsPacked() const
{
    return !files.isEmpty() && std::all_of(files.cbegin(), files.cend(), [](const PackedFile& file) {
        return !file.checksum.isEmpty() && !file.packageChecksum.isEmpty();
    });
}

QJsonObject SubmitWork::ToJson() const
{
    QJsonArray packed;
    for (const PackedFile& file : files)
        packed.append(FileToJson(file));
    return {{SceneKey, scene}, {FilesKey, packed}, {MissingKey, QJsonArray::fromStringList(missing)},
        {WidthKey, width}, {HeightKey, height}};
}

SubmitWork SubmitWork::FromJson(const QJsonObject& json)
{
    SubmitWork work;
    work.scene = json.value(SceneKey).toString();
    const QJsonArray packed = json.value(FilesKey).toArray();
    for (const QJsonValue& file : packed)
        work.files.append(FileFromJson(file.toObject()));
    work.missing = json.value(MissingKey).toVariant().toStringList();
    work.width = json.value(WidthKey).toInt();
    work.height = json.value(HeightKey).toInt();
    return work;
}
