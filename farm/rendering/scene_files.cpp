#include "farm/rendering/scene_files.h"

#include "farm/base/errors.h"
#include "farm/base/safe_path.h"
#include "farm/jobs/job_files.h"
#include "farm/uploads/content_store.h"
#include "storage/disk_full.h"
#include "storage/durable_file.h"

#include <QDirIterator>
#include <QFileInfo>

#include <cstdio>
#include <stdexcept>

namespace farm {

namespace {

void SyncTree(const QString& folder)
{
    QDirIterator entries(
        folder, QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden, QDirIterator::Subdirectories);
    while (entries.hasNext())
        storage::SyncToDisk(entries.next());
}

void Make(const QDir& folder)
{
    if (!folder.mkpath(QStringLiteral(".")))
        storage::ThrowWriteError("cannot create the folder of the scene", QFileInfo(folder.path()).path(), 0);
}

} // namespace

SceneFiles::SceneFiles(
    Database& database, const ContentStore& contents, const QString& shippedFolder, const RendererUser& user)
    : m_database(database)
    , m_contents(contents)
    , m_shippedFolder(shippedFolder)
    , m_user(user)
{
}

void SceneFiles::Provide(
    const FrameTask& task, const QDir& jobFolder, bool mayLink, const GoesOn& goesOn) const
{
    const QString scene = jobFolder.filePath(QStringLiteral("scene"));
    if (QFileInfo::exists(scene))
        return;
    QDir unfinished(scene + QStringLiteral(".unfinished"));
    unfinished.removeRecursively();
    try {
        Make(unfinished);
        if (!ProvideOwn(task.key.job, unfinished, mayLink, goesOn))
            CopyShipped(task.scene, unfinished);
        SyncTree(unfinished.path());
        m_user.LetRead(unfinished.path());
        storage::RenameDurably(unfinished.path(), scene);
    } catch (const std::exception&) {
        // The disk may be full, so an incomplete copy must not stay on it.
        unfinished.removeRecursively();
        throw;
    }
}

bool SceneFiles::ProvideOwn(std::int64_t job, const QDir& folder, bool mayLink, const GoesOn& goesOn) const
{
    const std::vector<JobFile> files
        = m_database.Read([job](SQLite::Database& connection) { return JobFilesOf(connection, job); });
    for (const JobFile& file : files) {
        const QString target = folder.filePath(file.path);
        if (!IsSafePath(file.path))
            throw SceneError("a path of the scene is not allowed");
        Make(QFileInfo(target).dir());
        m_contents.ProvideAs(target, file.checksum, mayLink, goesOn);
    }
    return !files.empty();
}

void SceneFiles::CopyShipped(const QString& scene, const QDir& folder) const
{
    const QString shipped = QDir(m_shippedFolder).filePath(scene);
    if (!QFileInfo::exists(shipped))
        throw SceneError("the scene file is missing");
    if (!QFile::copy(shipped, folder.filePath(scene)))
        storage::ThrowWriteError("cannot write the scene file", folder.path(), QFileInfo(shipped).size());
}

} // namespace farm
