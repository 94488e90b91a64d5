#include "frame_files.h"

#include "durable_file.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>

#include <stdexcept>

namespace farm {

FrameFiles::FrameFiles(const QString& folder, const QString& sceneFolder)
    : m_folder(folder)
    , m_sceneFolder(sceneFolder)
{
}

QString FrameFiles::JobFolder(const QString& jobId) const
{
    return QDir(m_folder).filePath(jobId);
}

QString FrameFiles::FrameName(int number, const QString& suffix)
{
    return QStringLiteral("frame_%1.%2").arg(number, 4, 10, QLatin1Char('0')).arg(suffix);
}

QString FrameFiles::UnfinishedName(int number, const QString& suffix)
{
    return QStringLiteral("unfinished_") + FrameName(number, suffix);
}

void FrameFiles::Prepare(const FrameTask& task, const QString& suffix) const
{
    const QDir folder(JobFolder(task.jobId));
    MakeFolder(folder);
    QFile::remove(folder.filePath(UnfinishedName(task.Number(), suffix)));
    if (task.beginsRun)
        RemoveFrames(folder, suffix);
    ProvideScene(task);
}

void FrameFiles::RemoveFrames(QDir folder, const QString& suffix)
{
    const QStringList frames
        = folder.entryList({QStringLiteral("frame_*.") + suffix}, QDir::Files | QDir::Hidden);
    for (const QString& frame : frames) {
        if (!folder.remove(frame))
            throw std::runtime_error("cannot remove a frame of the earlier run");
    }
}

void FrameFiles::MakeFolder(const QDir& folder) const
{
    if (folder.exists())
        return;
    if (!folder.mkpath(QStringLiteral(".")))
        throw std::runtime_error("cannot make the job's folder");
    storage::SyncToDisk(m_folder);
    storage::SyncToDisk(QFileInfo(m_folder).path());
}

void FrameFiles::ProvideScene(const FrameTask& task) const
{
    const QString own = QDir(JobFolder(task.jobId)).filePath(task.scene);
    if (QFile::exists(own))
        return;
    QFile shipped(QDir(m_sceneFolder).filePath(task.scene));
    QSaveFile copy(own);
    if (!shipped.open(QIODevice::ReadOnly))
        throw std::runtime_error("the scene file is missing");
    if (!copy.open(QIODevice::WriteOnly) || copy.write(shipped.readAll()) < 0 || !copy.commit())
        throw std::runtime_error("cannot write the scene file");
}

void FrameFiles::Keep(const FrameTask& task, const QString& suffix) const
{
    const QDir folder(JobFolder(task.jobId));
    const QString unfinished = folder.filePath(UnfinishedName(task.Number(), suffix));
    const QString finished = folder.filePath(FrameName(task.Number(), suffix));
    if (QFileInfo(unfinished).size() == 0)
        throw std::runtime_error("the renderer left no picture");
    // It may be there already: kept, but not marked before a crash.
    storage::RenameDurably(unfinished, finished);
}

} // namespace farm
