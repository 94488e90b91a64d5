#pragma once

#include "frame_task.h"

#include <QDir>

namespace farm {

/// The files of the jobs: each has a folder of its own, named by its id, with the scene and finished frames.
class FrameFiles
{
public:
    /// `folder` holds the jobs' folders, `sceneFolder` the scenes that the farm ships.
    FrameFiles(const QString& folder, const QString& sceneFolder);

    QString JobFolder(const QString& jobId) const;
    /// "frame_0001.png" for number 1 and suffix "png".
    static QString FrameName(int number, const QString& suffix);
    /// Where the renderer writes until the frame is whole.
    static QString UnfinishedName(int number, const QString& suffix);

    /// Makes the job's folder, puts its scene there and removes what an earlier attempt at the frame, or an earlier run
    /// of the job, left.
    /// Throws std::runtime_error.
    void Prepare(const FrameTask& task, const QString& suffix) const;
    /// Gives a rendered frame its name once it is on the disk. Throws std::runtime_error.
    void Keep(const FrameTask& task, const QString& suffix) const;

private:
    static void RemoveFrames(QDir folder, const QString& suffix);
    void MakeFolder(const QDir& folder) const;
    void ProvideScene(const FrameTask& task) const;

    QString m_folder;
    QString m_sceneFolder;
};

} // namespace farm
