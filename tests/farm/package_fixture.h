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

/// The paths and contents of a scene's files.
using SceneContents = QList<QPair<QByteArray, QByteArray>>;

/// A scene that needs no renderer: two small files.
inline const SceneContents PlainFiles {{"scene.txt", "a scene"}, {"maps/leaf.txt", "a leaf"}};

/// A ZIP archive. `change` can corrupt it before it is written.
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

/// A submission of these files, the first of which is the scene file.
inline QJsonObject SubmissionOf(const SceneContents& files, const char* name = "first")
{
    QJsonArray list;
    for (const auto& file : files)
        list.append(
            QJsonObject {{"path"_s, QString::fromUtf8(file.first)}, {"checksum"_s, Sha256(file.second)}});
    const QJsonArray frames {QJsonObject {{"start"_s, 1}, {"end"_s, 1}}};
    return {{"submission"_s, QLatin1String(name)}, {"type"_s, "povray"_s}, {"name"_s, "a job"_s},
        {"scene"_s, QString::fromUtf8(files.at(0).first)}, {"files"_s, list}, {"frames"_s, frames},
        {"width"_s, 48}, {"height"_s, 36}, {"prerender"_s, false}};
}
