#pragma once

#include "tests/farm/farm_client.h"

#include <QDirIterator>

#include <functional>
#include <zip.h>

/// The paths and contents of a scene's files.
using SceneContents = QList<QPair<QByteArray, QByteArray>>;

/// A scene that needs no renderer: two small files.
inline const SceneContents PlainFiles {{"scene.txt", "a scene"}, {"maps/leaf.txt", "a leaf"}};

/// A ZIP archive. `change` can corrupt it before it is written.
inline QByteArray Package(const SceneContents& files, const std::function<void(zip_t*)>& change = {})
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("package.zip"_s);
    zip_t* const archive = zip_open(QFile::encodeName(path).constData(), ZIP_CREATE, nullptr);
    for (const auto& [name, content] : files)
        zip_file_add(archive, name, zip_source_buffer(archive, content, zip_uint64_t(content.size()), 0), 0);
    if (change)
        change(archive);
    zip_close(archive);
    return ReadFile(path);
}

/// A submission of these files, the first of which is the scene file.
inline QJsonObject SubmissionOf(const SceneContents& files, const QString& name = "first"_s)
{
    QJsonArray list;
    for (const auto& [path, content] : files)
        list.append(QJsonObject {{"path"_s, QString::fromUtf8(path)}, {"checksum"_s, Sha256(content)}});
    const QJsonArray frames {QJsonObject {{"start"_s, 1}, {"end"_s, 1}}};
    return {{"submission"_s, name}, {"type"_s, "povray"_s}, {"name"_s, "a job"_s},
        {"scene"_s, QString::fromUtf8(files.at(0).first)}, {"files"_s, list}, {"frames"_s, frames},
        {"width"_s, 48}, {"height"_s, 36}, {"prerender"_s, false}};
}

/// The number of files in a folder and all folders below it.
inline int FilesIn(const QString& folder)
{
    int count = 0;
    for (QDirIterator files(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
         files.hasNext(); ++count)
        files.next();
    return count;
}
