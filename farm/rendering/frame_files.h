#pragma once

#include "farm/rendering/frame_task.h"

#include <QDir>

namespace farm {

class SceneFiles;

/// Where the renderer of a frame works.
struct RenderPlace
{
    /// Holds all files of the scene.
    QString sceneFolder;
    /// The folder that the scene file is in: what is named relatively in it is found from there.
    QString workFolder;
    /// The scene under a name that no renderer stumbles over, whatever it is called.
    QString sceneFile;
    QString outputFolder;
    /// In `outputFolder`.
    QString outputName;

    QString Output() const { return outputFolder + QLatin1Char('/') + outputName; }
    /// A path of these as it is seen from the work folder.
    QString FromWorkFolder(const QString& path) const { return QDir(workFolder).relativeFilePath(path); }
};

/// The files of the jobs: each has a folder of its own, named by its id, with the scene and finished frames.
class FrameFiles
{
public:
    /// `folder` holds the jobs' folders.
    FrameFiles(const QString& folder, const SceneFiles& scenes);

    QString JobFolder(const QString& jobId) const;
    /// "frame_0001.png" for number 1 and suffix "png".
    static QString FrameName(int number, const QString& suffix);

    /// Makes the job's folder, puts its scene there and removes what an earlier attempt at the frame, or an earlier run
    /// of the job, left.
    /// Throws std::runtime_error.
    RenderPlace Prepare(const FrameTask& task, const QString& suffix) const;
    /// Gives a rendered frame its place once it is on the disk. Throws std::runtime_error.
    Picture Keep(const FrameTask& task, const QString& suffix) const;

private:
    static void LinkScene(const RenderPlace& place, const QString& scene);
    static void RemoveFrames(QDir folder, const QString& suffix);
    void MakeFolder(const QDir& folder) const;
    RenderPlace PlaceOf(const FrameTask& task, const QString& suffix) const;

    QString m_folder;
    const SceneFiles& m_scenes;
};

} // namespace farm
