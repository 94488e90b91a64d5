#include "host/rendercore/submit/submit_worker.h"

#include "host/rendercore/submit/local_stages.h"
#include "host/rendercore/submit/task_packages.h"

#include <exception>

namespace {

constexpr qint64 ProgressInterval = 250; // ms

SubmitError ErrorIn(SubmitStage stage)
{
    switch (stage) {
    case SubmitStage::Analyze:
        return SubmitError::SceneUnusable;
    case SubmitStage::Compress:
    case SubmitStage::Checksum:
        return SubmitError::PackingFailed;
    default:
        return SubmitError::FarmRefused;
    }
}

} // namespace

StageOutcome SubmitWorker::Run(const StageRequest& request, const StageProgress& onProgress)
{
    m_lastProgress.invalidate();
    const auto onSomeProgress = [this, &onProgress](int percent, const QString& text) {
        if (m_lastProgress.isValid() && m_lastProgress.elapsed() < ProgressInterval)
            return;
        m_lastProgress.start();
        onProgress(percent, text);
    };
    StageOutcome outcome;
    const auto fail = [&](const TaskMessage& reason) {
        outcome.kind = StageOutcome::Kind::Failed;
        outcome.error = ErrorIn(request.task.next);
        outcome.message = reason;
        outcome.work = request.task.work;
    };
    try {
        outcome = RunStage(request, onSomeProgress);
    } catch (const TaskFailure& failure) {
        fail(failure.Message());
    } catch (const std::exception& failure) {
        fail(QString::fromUtf8(failure.what()));
    }
    outcome.stage = request.task.next;
    return outcome;
}

StageOutcome SubmitWorker::Analyze(const StageRequest& request, const StageProgress& onProgress)
{
    const QString scene = request.task.scene;
    const SceneKind* const kind = KindOfScene(scene);
    if (kind == nullptr || kind->program == nullptr || !WhyNotAnalysed(scene).IsEmpty())
        return AnalyzeStage(request, onProgress);
    if (const auto report = m_reporter.Ask(request.task.number, scene))
        return AnalyzeStage(request, onProgress, *report);
    // Other tasks go on meanwhile.
    StageOutcome outcome;
    outcome.kind = StageOutcome::Kind::TryAgain;
    outcome.obstacle = StageOutcome::Obstacle::Program;
    outcome.next = SubmitStage::Analyze;
    outcome.work = request.task.work;
    outcome.message = kind->reading;
    return outcome;
}

void SubmitWorker::Discard(qint64 task, const QString& folder)
{
    m_reporter.Forget(task);
    TaskPackages::Discard(folder);
}

StageOutcome SubmitWorker::RunStage(const StageRequest& request, const StageProgress& onProgress)
{
    switch (request.task.next) {
    case SubmitStage::Wait:
    case SubmitStage::Analyze:
        return Analyze(request, onProgress);
    case SubmitStage::Compress:
        return CompressStage(request, onProgress, m_cache);
    case SubmitStage::Checksum:
        return ChecksumStage(request, onProgress);
    default:
        return m_farm.Run(request, onProgress);
    }
}
