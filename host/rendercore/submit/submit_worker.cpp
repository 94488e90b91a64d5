#include "host/rendercore/submit/submit_worker.h"

#include "host/rendercore/submit/local_stages.h"

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
    try {
        outcome = RunStage(request, onSomeProgress);
    } catch (const std::exception& failure) {
        outcome.kind = StageOutcome::Kind::Failed;
        outcome.error = ErrorIn(request.task.next);
        outcome.message = QString::fromUtf8(failure.what());
        outcome.work = request.task.work;
    }
    outcome.stage = request.task.next;
    return outcome;
}

StageOutcome SubmitWorker::RunStage(const StageRequest& request, const StageProgress& onProgress)
{
    switch (request.task.next) {
    case SubmitStage::Wait:
    case SubmitStage::Analyze:
        return AnalyzeStage(request, onProgress);
    case SubmitStage::Compress:
        return CompressStage(request, onProgress, m_cache);
    case SubmitStage::Checksum:
        return ChecksumStage(request, onProgress);
    default:
        return m_farm.Run(request, onProgress);
    }
}
