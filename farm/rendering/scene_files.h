#pragma once

#include "farm/base/schema.h"
#include "farm/rendering/frame_task.h"
#include "farm/rendering/renderer_user.h"
#include "farm/uploads/content_copy.h"

#include <QDir>

namespace farm {

class ContentStore;

/// Provides the files of a job's scene in the job's folder.
class SceneFiles
{
public:
    /// @param shippedFolder holds the scenes that come with the farm.
    SceneFiles(Database& database, const ContentStore& contents, const QString& shippedFolder,
        const RendererUser& user = {});

    /// Creates the folder "scene" in the job's folder unless it exists. An incomplete copy never has this name.
    /// Throws std::runtime_error.
    /// @param mayLink allows files that are linked to the farm's contents, for renderers that cannot change them.
    void Provide(const FrameTask& task, const QDir& jobFolder, bool mayLink, const GoesOn& goesOn) const;

private:
    /// Returns whether the job has files of its own.
    bool ProvideOwn(std::int64_t job, const QDir& folder, bool mayLink, const GoesOn& goesOn) const;
    void CopyShipped(const QString& scene, const QDir& folder) const;

    Database& m_database;
    const ContentStore& m_contents;
    QString m_shippedFolder;
    RendererUser m_user;
};

} // namespace farm
