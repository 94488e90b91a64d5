#include "host/rendercore/submit/submit_task.h"

#include <QJsonArray>

#include <algorithm>

namespace {

const QString kScene = QStringLiteral("scene");
const QString kFiles = QStringLiteral("files");
const QString kMissing = QStringLiteral("missing");
const QString kWidth = QStringLiteral("width");
const QString kHeight = QStringLiteral("height");
const QString kPath = QStringLiteral("path");
const QString kSource = QStringLiteral("source");
const QString kChecksum = QStringLiteral("checksum");
const QString kPackageChecksum = QStringLiteral("packageChecksum");
const QString kPackageSize = QStringLiteral("packageSize");

QJsonObject FileToJson(const PackedFile& file)
{
    return {{kPath, file.path}, {kSource, file.source}, {kChecksum, file.checksum},
        {kPackageChecksum, file.packageChecksum}, {kPackageSize, file.packageSize}};
}

PackedFile FileFromJson(const QJsonObject& json)
{
    PackedFile file;
    file.path = json.value(kPath).toString();
    file.source = json.value(kSource).toString();
    file.checksum = json.value(kChecksum).toString();
    file.packageChecksum = json.value(kPackageChecksum).toString();
    file.packageSize = static_cast<qint64>(json.value(kPackageSize).toDouble());
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
    return {{kScene, scene}, {kFiles, packed}, {kMissing, QJsonArray::fromStringList(missing)},
        {kWidth, width}, {kHeight, height}};
}

SubmitWork SubmitWork::FromJson(const QJsonObject& json)
{
    SubmitWork work;
    work.scene = json.value(kScene).toString();
    const QJsonArray packed = json.value(kFiles).toArray();
    for (const QJsonValue& file : packed)
        work.files.append(FileFromJson(file.toObject()));
    work.missing = json.value(kMissing).toVariant().toStringList();
    work.width = json.value(kWidth).toInt();
    work.height = json.value(kHeight).toInt();
    return work;
}
