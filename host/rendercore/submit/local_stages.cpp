#include "host/rendercore/submit/local_stages.h"

#include "host/rendercore/submit/checksum_cache.h"
#include "host/rendercore/submit/job_body.h"
#include "host/rendercore/submit/scene_analysis.h"
#include "host/rendercore/submit/scene_package.h"
#include "host/rendercore/submit/submit_arguments.h"
#include "host/rendercore/submit/submit_text.h"
#include "host/rendercore/submit/task_packages.h"
#include "storage/checksum.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <numeric>
#include <stdexcept>

namespace {

/// Counts bytes and reports their percentage of a total.
class ByteCount
{
public:
    ByteCount(const StageRequest& request, const StageProgress& onProgress, qint64 total)
        : m_request(request)
        , m_onProgress(onProgress)
        , m_total(total)
    {
    }

    /// @return false when the stage should end early.
    bool Add(qint64 bytes)
    {
        m_done += bytes;
        m_onProgress(m_total > 0 ? static_cast<int>(std::min(m_done, m_total) * 100 / m_total) : 0, {});
        return !*m_request.interrupted;
    }

private:
    const StageRequest& m_request;
    const StageProgress& m_onProgress;
    qint64 m_total;
    qint64 m_done = 0;
};

// Small files share packages, since each package costs several requests. A large file gets its own package, so that the
// others need not be sent again when it is refused.
constexpr qint64 LargeFile = 1024LL * 1024; // bytes
constexpr qint64 SharedBytes = 16 * LargeFile;
constexpr int SharedFiles = 1000;

/// Files that go into one package.
struct Group
{
    QVector<int> files;
    qint64 size = 0; // bytes
};

bool MustPack(const PackedFile& file)
{
    return file.checksum.isEmpty() || (file.isWanted && file.package < 0);
}

QVector<Group> GroupsToPack(const SubmitWork& work)
{
    QVector<Group> groups;
    int shared = -1; // the group that takes small files
    for (int index = 0; index < work.files.size(); ++index) {
        if (!MustPack(work.files.at(index)))
            continue;
        const qint64 size = QFileInfo(work.files.at(index).source).size();
        const bool isLarge = size >= LargeFile;
        const bool fits = shared >= 0 && groups.at(shared).size + size <= SharedBytes
            && groups.at(shared).files.size() < SharedFiles;
        if (isLarge || !fits)
            groups.append(Group());
        if (!isLarge && !fits)
            shared = groups.size() - 1;
        Group& group = isLarge ? groups.last() : groups[shared];
        group.files.append(index);
        group.size += size;
    }
    return groups;
}

StageOutcome Done(const StageRequest& request, SubmitStage next, const SubmitWork& work)
{
    StageOutcome outcome;
    if (*request.interrupted)
        return outcome;
    outcome.kind = StageOutcome::Kind::Done;
    outcome.next = next;
    outcome.work = work;
    return outcome;
}

StageOutcome Unusable(const TaskMessage& reason)
{
    StageOutcome outcome;
    outcome.kind = StageOutcome::Kind::Failed;
    outcome.error = SubmitError::SceneUnusable;
    outcome.message = reason;
    return outcome;
}

qint64 SizeOfNewPackages(const StageRequest& request)
{
    qint64 size = 0;
    for (int index = 0; index < request.task.work.packages.size(); ++index) {
        if (request.task.work.packages.at(index).checksum.isEmpty())
            size += QFileInfo(TaskPackages::Path(request.folder, index)).size();
    }
    return size;
}

/// Turns files into checksums and packages.
class Packing
{
public:
    Packing(const StageRequest& request, ChecksumCache& cache)
        : work(request.task.work)
        , m_request(request)
        , m_cache(cache)
    {
    }

    /// Takes the checksums of unchanged files from the cache.
    void FindKnown()
    {
        for (PackedFile& file : work.files) {
            if (!file.checksum.isEmpty() || *m_request.interrupted)
                continue;
            const FileStamp stamp = FileStamp::Of(file.source);
            file.checksum = m_cache.Find(stamp);
            if (!file.checksum.isEmpty())
                m_read.append({stamp, file.checksum});
        }
    }

    /// @return false when the stage should end early.
    bool Pack(const QVector<int>& files, ByteCount& count)
    {
        QVector<PackageEntry> entries;
        QVector<FileStamp> stamps;
        for (const int index : files) {
            const PackedFile& file = work.files.at(index);
            entries.append({file.source, file.path, {}});
            stamps.append(FileStamp::Of(file.source));
        }
        const QString archive = TaskPackages::Path(m_request.folder, work.packages.size());
        const auto compression
            = m_request.access.isOnThisComputer ? Compression::None : Compression::WhereItHelps;
        if (!PackFiles(entries, archive, compression, [&count](qint64 bytes) { return count.Add(bytes); }))
            return false;
        for (int index = 0; index < files.size(); ++index) {
            PackedFile& file = work.files[files.at(index)];
            const QString checksum = entries.at(index).checksum;
            hasOtherContent = hasOtherContent || (!file.checksum.isEmpty() && file.checksum != checksum);
            file.checksum = checksum;
            file.package = work.packages.size();
            if (stamps.at(index) == FileStamp::Of(file.source))
                m_read.append({stamps.at(index), checksum});
        }
        work.packages.append(Package());
        return true;
    }

    void Record() { m_cache.Record(m_read); }

    SubmitWork work;
    bool hasOtherContent = false; ///< a file has changed since the scene was analysed

private:
    const StageRequest& m_request;
    ChecksumCache& m_cache;
    QVector<ChecksumCache::Entry> m_read;
};

QString ChecksumOf(const QString& package, ByteCount& count)
{
    try {
        return storage::FileChecksum(package, [&count](qint64 bytes) { return count.Add(bytes); });
    } catch (const std::runtime_error& failure) {
        throw TaskFailure(
            TaskMessage::Lines({SubmitText::PackageUnreadable, QString::fromUtf8(failure.what())}));
    }
}

} // namespace

StageOutcome AnalyzeStage(
    const StageRequest& request, const StageProgress& onProgress, const QByteArray& report)
{
    // The sizes of included files are still unknown; usually the scene itself is the largest part.
    ByteCount count(request, onProgress, QFileInfo(request.task.scene).size());
    const SceneAnalysis analysis = AnalyseScene(
        request.task.scene, [&count](qint64 bytes) { return count.Add(bytes); }, report);
    StageOutcome outcome;
    if (*request.interrupted)
        return outcome;
    if (!analysis.error.IsEmpty())
        return Unusable(analysis.error);
    SubmitWork work;
    work.scene = analysis.scene;
    for (const QString& reference : analysis.missing)
        work.missing.append(reference);
    for (const QString& reference : analysis.absolute)
        work.missing.append(TaskMessage(SubmitText::Absolute, {reference}));
    for (const QString& file : analysis.outside)
        work.missing.append(TaskMessage(SubmitText::Outside, {file}));
    work.missing += analysis.remarks;
    work.width = analysis.width;
    work.height = analysis.height;
    work.frameStep = analysis.frameStep;
    for (const SceneFile& file : analysis.files) {
        PackedFile packed;
        packed.path = file.path;
        packed.source = file.source;
        work.files.append(packed);
    }
    if (AreTooManyFiles(work))
        return Unusable(SubmitText::TooManyFiles);
    outcome = Done(request, SubmitStage::Compress, work);
    outcome.arguments
        = MakeArguments(analysis.firstFrame, analysis.lastFrame, analysis.width, analysis.height);
    return outcome;
}

StageOutcome CompressStage(const StageRequest& request, const StageProgress& onProgress, ChecksumCache& cache)
{
    if (!QDir().mkpath(request.folder))
        throw TaskFailure(SubmitText::NoPackageFolder);
    Packing packing(request, cache);
    packing.FindKnown();
    const QVector<Group> groups = GroupsToPack(packing.work);
    ByteCount count(request, onProgress,
        std::accumulate(groups.cbegin(), groups.cend(), qint64(0),
            [](qint64 sum, const Group& group) { return sum + group.size; }));
    for (const Group& group : groups) {
        if (!packing.Pack(group.files, count))
            return {};
    }
    packing.Record();
    return Done(
        request, packing.hasOtherContent ? SubmitStage::Analyze : SubmitStage::Checksum, packing.work);
}

StageOutcome ChecksumStage(const StageRequest& request, const StageProgress& onProgress)
{
    SubmitWork work = request.task.work;
    ByteCount count(request, onProgress, SizeOfNewPackages(request));
    for (int index = 0; index < work.packages.size() && !*request.interrupted; ++index) {
        Package& package = work.packages[index];
        if (!package.checksum.isEmpty())
            continue;
        const QString archive = TaskPackages::Path(request.folder, index);
        package.checksum = ChecksumOf(archive, count);
        package.size = QFileInfo(archive).size();
    }
    return Done(request, SubmitStage::CopySame, work);
}
