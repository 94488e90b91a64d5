#include "farm/rendering/frame_files.h"

#include "farm/base/errors.h"
#include "farm/base/remove_tree.h"
#include "farm/rendering/scene_files.h"
#include "storage/checksum.h"
#include "storage/disk_full.h"
#include "storage/durable_file.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <cerrno>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>

namespace farm {

namespace {

QString PlainSuffix(const QString& suffix)
{
    static const QRegularExpression plain(QStringLiteral("^[A-Za-z0-9]{1,16}$"));
    return plain.match(suffix).hasMatch() ? suffix : QStringLiteral("scene");
}

QString MarkOf(const QString& jobFolder)
{
    return QDir(jobFolder).filePath(QStringLiteral("run"));
}

} // namespace

FrameFiles::FrameFiles(
    const QString& folder, const SceneFiles& scenes, const RendererUser& user, DiskReserve reserve)
    : m_folder(folder)
    , m_scenes(scenes)
    , m_user(user)
    , m_reserve(std::move(reserve))
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

RunFiles FrameFiles::FilesOf(const QString& jobId, const RunId& run) const
{
    return {JobFolder(jobId) + QStringLiteral("/runs/") + run};
}

RenderPlace FrameFiles::PlaceOf(const FrameTask& task, const QString& suffix, const RunId& run) const
{
    const QDir folder(JobFolder(task.jobId));
    RenderPlace place;
    place.sceneFolder = folder.filePath(QStringLiteral("scene"));
    const QFileInfo scene(QDir(place.sceneFolder).filePath(task.scene));
    place.workFolder = scene.path();
    place.sceneFile = folder.filePath(QStringLiteral("main.") + PlainSuffix(scene.suffix()));
    place.run = FilesOf(task.jobId, run);
    place.outputName = FrameName(task.Number(), suffix);
    return place;
}

RenderPlace FrameFiles::Prepare(
    const FrameTask& task, const Manner& manner, const RunId& run, const GoesOn& goesOn) const
{
    m_reserve.Require();
    const QDir folder(JobFolder(task.jobId));
    MakeFolder(folder);
    RenderPlace place = PlaceOf(task, manner.suffix, run);
    if (!QDir().mkpath(place.run.OutputFolder()))
        storage::ThrowWriteError("cannot create the folder of an unfinished frame", folder.path(), 0);
    BeginRun(task, manner.suffix);
    m_scenes.Provide(task, folder, manner.mayLink, goesOn);
    LinkScene(place, task.scene);
    OpenToRenderer(place, folder);
    return place;
}

void FrameFiles::OpenToRenderer(const RenderPlace& place, const QDir& folder) const
{
    for (const QString& above : {QFileInfo(m_folder).path(), m_folder, folder.path(),
             QFileInfo(place.run.folder).path(), place.run.folder})
        m_user.LetPass(above);
    m_user.Give(place.run.OutputFolder());
}

// Renderers misread spaces, quotation marks and non-Latin letters in their arguments; the link's name has none.
void FrameFiles::LinkScene(const RenderPlace& place, const QString& scene)
{
    const QString target = QFileInfo(place.sceneFolder).fileName() + QLatin1Char('/') + scene;
    if (QFileInfo::exists(place.sceneFile))
        return;
    QFile::remove(place.sceneFile);
    if (::symlink(QFile::encodeName(target).constData(), QFile::encodeName(place.sceneFile).constData()) != 0)
        throw std::runtime_error("cannot create a link to the scene");
}

int FrameFiles::BegunRun(const QString& jobId) const
{
    QFile mark(MarkOf(JobFolder(jobId)));
    return mark.open(QIODevice::ReadOnly) ? mark.readAll().toInt() : 0;
}

/// Removes the frames of earlier runs before the first frame of this run is rendered. A file names the run that has
/// begun; it is on the disk before that frame is.
void FrameFiles::BeginRun(const FrameTask& task, const QString& suffix) const
{
    const int begun = BegunRun(task.jobId);
    if (begun >= task.key.run)
        return;
    if (begun > 0)
        RemoveFrames(JobFolder(task.jobId), suffix);
    const QString mark = MarkOf(JobFolder(task.jobId));
    const QString unfinished = mark + QStringLiteral(".new");
    QFile::remove(unfinished);
    storage::AppendDurably(unfinished, 0, QByteArray::number(task.key.run));
    storage::RenameDurably(unfinished, mark);
}

void FrameFiles::RemoveFrames(QDir folder, const QString& suffix)
{
    const QStringList frames
        = folder.entryList({QStringLiteral("frame_*.") + suffix}, QDir::Files | QDir::Hidden);
    for (const QString& frame : frames) {
        QFile file(folder.filePath(frame));
        if (!file.remove())
            throw std::runtime_error("cannot remove " + frame.toStdString()
                + " of an earlier run: " + file.errorString().toStdString());
    }
    RemoveTree(folder.filePath(QStringLiteral("logs")));
}

void FrameFiles::MakeFolder(const QDir& folder) const
{
    if (folder.exists())
        return;
    if (!folder.mkpath(QStringLiteral(".")))
        storage::ThrowWriteError("cannot create the job's folder", m_folder, 0);
    storage::SyncToDisk(m_folder);
    storage::SyncToDisk(QFileInfo(m_folder).path());
}

void FrameFiles::RequireRoom() const
{
    constexpr qint64 LargePicture = qint64 {16} * 1024 * 1024; // bytes
    m_reserve.Require();
    if (storage::LacksRoom(m_folder, LargePicture))
        throw storage::DiskError("the disk is full", ENOSPC);
}

/// Makes sure that the picture is not a hard link to another file: the renderer could change both later, and the farm
/// must not change the other file's permissions.
void FrameFiles::OwnAlone(const QString& picture)
{
    struct stat info = {};
    if (::lstat(QFile::encodeName(picture).constData(), &info) != 0 || info.st_nlink == 1)
        return;
    // A file with holes takes its whole size as a copy.
    if (storage::LacksRoom(QFileInfo(picture).path(), info.st_size))
        throw SceneError("the renderer left a link to a file that is too large to be copied");
    const QString copy = picture + QStringLiteral(".copy");
    QFile::remove(copy);
    if (!QFile::copy(picture, copy) || !QFile::remove(picture) || !QFile::rename(copy, picture))
        storage::ThrowWriteError(
            "cannot copy a picture that is a link to another file", picture, info.st_size);
}

Picture FrameFiles::Keep(const FrameTask& task, const QString& suffix, const RunId& run, bool mayBeKept) const
{
    const RenderPlace places = PlaceOf(task, suffix, run);
    const QString unfinished = places.Output();
    struct stat found = {};
    const int error = ::lstat(QFile::encodeName(unfinished).constData(), &found) == 0 ? 0 : errno;
    if (error != 0 && (error != ENOENT || !QFileInfo::exists(places.run.folder)))
        throw storage::DiskError("the folder of the frame cannot be read", error);
    const QString name = FrameName(task.Number(), suffix);
    const QString place = QDir(JobFolder(task.jobId)).filePath(name);
    const QFileInfo left(unfinished);
    const QFileInfo kept(place);
    // An older picture belongs to an earlier run of the job.
    const bool isKept = mayBeKept && !left.exists() && !left.isSymLink() && kept.isFile()
        && kept.lastModified() >= QFileInfo(places.run.Order()).lastModified();
    if (isKept) {
        storage::SyncToDisk(place);
        storage::SyncToDisk(JobFolder(task.jobId));
        return {name, std::int64_t(kept.size()), storage::FileChecksum(place)};
    }
    if (!left.isFile() || left.isSymLink() || left.size() == 0)
        throw SceneError("the renderer left no picture");
    if (!left.isReadable())
        throw SceneError("the renderer left a picture that the farm may not read");
    OwnAlone(unfinished);
    m_user.TakeBack(unfinished);
    const Picture picture {name, std::int64_t(left.size()), storage::FileChecksum(unfinished)};
    storage::RenameDurably(unfinished, place);
    return picture;
}

void FrameFiles::KeepLog(const FrameTask& task, const RunId& run) const
{
    const QDir logs(JobFolder(task.jobId) + QStringLiteral("/logs"));
    const QString log = logs.filePath(FrameName(task.Number(), QStringLiteral("txt")));
    if (QFileInfo(FilesOf(task.jobId, run).Log()).size() > 0 && logs.mkpath(QStringLiteral("."))) {
        QFile::remove(log);
        QFile::rename(FilesOf(task.jobId, run).Log(), log);
    }
}

void FrameFiles::DiscardOutput(const FrameTask& task, const RunId& run) const
{
    RemoveTree(FilesOf(task.jobId, run).OutputFolder());
}

bool FrameFiles::IsLost(const FrameTask& task, const RunId& run) const
{
    return QFileInfo::exists(m_folder) && !QFileInfo::exists(FilesOf(task.jobId, run).folder);
}

void FrameFiles::Discard(const FrameTask& task, const RunId& run) const
{
    RemoveTree(FilesOf(task.jobId, run).folder);
}

} // namespace farm
