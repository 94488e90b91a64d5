#pragma once

#include "farm/base/disk_reserve.h"
#include "farm/rendering/frame_task.h"
#include "farm/rendering/picture.h"
#include "farm/rendering/renderer_user.h"
#include "farm/runner/run.h"
#include "farm/uploads/content_copy.h"

#include <QDir>

namespace farm {

class SceneFiles;

/// The paths that the renderer of a frame uses.
struct RenderPlace
{
    /// Holds all files of the scene.
    QString sceneFolder;
    /// The scene file's folder, in which the renderer runs, because scenes name other files relative to it.
    QString workFolder;
    /// A link to the scene file under a name that every renderer can read.
    QString sceneFile;
    RunFiles run;
    /// The name of the picture in the run's output folder.
    QString outputName;

    QString Output() const { return run.OutputFolder() + QLatin1Char('/') + outputName; }
    /// Returns one of these paths relative to the work folder.
    QString FromWorkFolder(const QString& path) const { return QDir(workFolder).relativeFilePath(path); }
};

/// The files of the jobs: each job has a folder, named by its id, for the scene and the finished frames.
class FrameFiles
{
public:
    /// `folder` holds the jobs' folders.
    /// @param reserve is the disk space below which no frame is begun.
    FrameFiles(const QString& folder, const SceneFiles& scenes, const RendererUser& user = {},
        DiskReserve reserve = {});

    QString JobFolder(const QString& jobId) const;
    /// "frame_0001.png" for number 1 and suffix "png".
    static QString FrameName(int number, const QString& suffix);

    /// The files of a run of the job. Each run has a folder of its own, so that a renderer that was given up as lost
    /// cannot disturb the next attempt.
    RunFiles FilesOf(const QString& jobId, const RunId& run) const;

    struct Manner
    {
        /// The suffix of the pictures.
        QString suffix;
        /// Whether the scene's files may be links to the farm's contents, for renderers that cannot change them.
        bool mayLink = false;
    };
    /// Creates the job's folder with its scene and the run's folder; removes the frames of earlier runs of the job.
    /// Throws Interrupted, SceneError and, when the farm is at fault, other exceptions.
    RenderPlace Prepare(
        const FrameTask& task, const Manner& manner, const RunId& run, const GoesOn& goesOn) const;
    /// Throws storage::DiskError when the disk is so full that a renderer may have failed because of it.
    void RequireRoom() const;
    /// Moves a rendered frame to its place, where it is on the disk when this function returns. Throws SceneError when
    /// there is no picture, and other exceptions when it cannot be moved; it may be in its place even then.
    /// @param mayBeKept allows the picture to be there already.
    Picture Keep(
        const FrameTask& task, const QString& suffix, const RunId& run, bool mayBeKept = false) const;
    /// Keeps the renderer's output as the log of the frame.
    void KeepLog(const FrameTask& task, const RunId& run) const;
    /// Removes the files that the renderer has written, but not its log.
    void DiscardOutput(const FrameTask& task, const RunId& run) const;
    /// Whether the run's files are gone although the disk is available.
    bool IsLost(const FrameTask& task, const RunId& run) const;
    /// Removes everything that a run has left behind.
    void Discard(const FrameTask& task, const RunId& run) const;

    /// The latest run of a job that has begun in its folder; 0 when none has, or when an early version of the farm
    /// began it.
    int BegunRun(const QString& jobId) const;

private:
    static void LinkScene(const RenderPlace& place, const QString& scene);
    void BeginRun(const FrameTask& task, const QString& suffix) const;
    static void RemoveFrames(QDir folder, const QString& suffix);
    static void OwnAlone(const QString& picture);
    void MakeFolder(const QDir& folder) const;
    void OpenToRenderer(const RenderPlace& place, const QDir& folder) const;
    RenderPlace PlaceOf(const FrameTask& task, const QString& suffix, const RunId& run) const;

    QString m_folder;
    const SceneFiles& m_scenes;
    RendererUser m_user;
    DiskReserve m_reserve;
};

} // namespace farm
