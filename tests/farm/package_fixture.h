#pragma once

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QList>
#include <QPair>
#include <QString>

#include "tests/farm/farm_client.h"

#include <functional>
#include <zip.h>

/// Paths and contents.
using SceneContents = QList<QPair<QByteArray, QByteArray>>;

/// A ZIP archive; `change` may do to it, before it is written, what no honest client does.
inline QByteArray Package(const SceneContents& files, const std::function<void(zip_t*)>& change = {})
{
    zip_error_t error;
    zip_source_t* const sink = zip_source_buffer_create(nullptr, 0, 0, &error);
    zip_source_keep(sink);
    zip_t* const archive = zip_open_from_source(sink, ZIP_TRUNCATE, &error);
    for (const auto& file : files) {
        zip_source_t* const content
            = zip_source_buffer(archive, file.second.constData(), zip_uint64_t(file.second.size()), 0);
        zip_file_add(archive, file.first.constData(), content, 0);
    }
    if (change)
        change(archive);
    zip_close(archive);
    zip_stat_t stat;
    zip_source_stat(sink, &stat);
    QByteArray bytes(int(stat.size), '\0');
    zip_source_open(sink);
    zip_source_read(sink, bytes.data(), stat.size);
    zip_source_close(sink);
    zip_source_free(sink);
    return bytes;
}

/// A submission of these files, of which the first is the scene.
inline QJsonObject SubmissionOf(const SceneContents& files, const char* name = "first")
{
    QJsonArray list;
    for (const auto& file : files)
        list.append(QJsonObject {{QStringLiteral("path"), QString::fromUtf8(file.first)},
            {QStringLiteral("checksum"), Sha256(file.second)}});
    const QJsonArray frames {QJsonObject {{QStringLiteral("start"), 1}, {QStringLiteral("end"), 1}}};
    return {{QStringLiteral("submission"), QLatin1String(name)},
        {QStringLiteral("type"), QStringLiteral("povray")}, {QStringLiteral("name"), QStringLiteral("a job")},
        {QStringLiteral("scene"), QString::fromUtf8(files.at(0).first)}, {QStringLiteral("files"), list},
        {QStringLiteral("frames"), frames}, {QStringLiteral("width"), 48}, {QStringLiteral("height"), 36},
        {QStringLiteral("prerender"), false}};
}
