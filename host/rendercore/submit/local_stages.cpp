#include "host/rendercore/submit/local_stages.h"

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

qint64 SizeOfSources(const SubmitWork& work)
{
    qint64 size = 0;
    for (const PackedFile& file : work.files)
        size += QFileInfo(file.source).size();
    return size;
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

StageOutcome Unusable(const QString& reason)
{
    StageOutcome outcome;
    outcome.kind = StageOutcome::Kind::Failed;
    outcome.error = SubmitError::SceneUnusable;
    outcome.message = reason;
    return outcome;
}

/// Adds the file's name to any failure of `work`.
template <typename Work>
auto Naming(const PackedFile& file, Work work)
{
    try {
        return work();
    } catch (const std::exception& failure) {
        throw std::runtime_error(std::string(failure.what()) + '\n' + file.source.toStdString());
    }
}

} // namespace

StageOutcome AnalyzeStage(const StageRequest& request, const StageProgress& onProgress)
{
    // The sizes of included files are still unknown; usually the scene itself is the largest part.
    ByteCount count(request, onProgress, QFileInfo(request.task.scene).size());
    const SceneAnalysis analysis
        = AnalyseScene(request.task.scene, [&count](qint64 bytes) { return count.Add(bytes); });
    StageOutcome outcome;
    if (*request.interrupted)
        return outcome;
    if (!analysis.error.isEmpty())
        return Unusable(analysis.error);
    SubmitWork work;
    work.scene = analysis.scene;
    work.missing = analysis.missing;
    work.width = analysis.width;
    work.height = analysis.height;
    for (const SceneFile& file : analysis.files) {
        PackedFile packed;
        packed.path = file.path;
        packed.source = file.source;
        work.files.append(packed);
    }
    if (AreTooManyFiles(work))
        return Unusable(QString::fromLatin1(SubmitText::TooManyFiles));
    outcome = Done(request, SubmitStage::Compress, work);
    outcome.arguments
        = MakeArguments(analysis.firstFrame, analysis.lastFrame, analysis.width, analysis.height);
    return outcome;
}

StageOutcome CompressStage(const StageRequest& request, const StageProgress& onProgress)
{
    const SubmitWork& work = request.task.work;
    if (!QDir().mkpath(request.folder))
        throw std::runtime_error(SubmitText::NoPackageFolder);
    ByteCount count(request, onProgress, SizeOfSources(work));
    for (int index = 0; index < work.files.size() && !*request.interrupted; ++index) {
        const PackedFile& file = work.files.at(index);
        const bool isPacked = Naming(file, [&] {
            return PackFile(file.source, file.path, TaskPackages::Path(request.folder, index),
                [&count](qint64 bytes) { return count.Add(bytes); });
        });
        if (!isPacked)
            break;
    }
    return Done(request, SubmitStage::Checksum, work);
}

StageOutcome ChecksumStage(const StageRequest& request, const StageProgress& onProgress)
{
    SubmitWork work = request.task.work;
    ByteCount count(request, onProgress, SizeOfSources(work));
    for (int index = 0; index < work.files.size() && !*request.interrupted; ++index) {
        PackedFile& file = work.files[index];
        const QString package = TaskPackages::Path(request.folder, index);
        // Hash the packed content: the source may have changed since.
        Naming(file, [&] {
            file.checksum = PackedChecksum(package, [&count](qint64 bytes) { return count.Add(bytes); });
            file.packageChecksum
                = storage::FileChecksum(package, [&request](qint64) { return !*request.interrupted; });
        });
        file.packageSize = QFileInfo(package).size();
    }
    return Done(request, SubmitStage::CopySame, work);
}
