#include "host/rendercore/submit/submit_worker.h"

#include "host/rendercore/submit/local_stages.h"

#include <QDir>

#include <stdexcept>

namespace {

constexpr qint64 kProgressMs = 250;

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

void SubmitWorker::Run(const StageOrder& order)
{
    m_lastProgress.invalidate();
    const auto onProgress = [this, number = order.task.number](int percent, const QString& text) {
        if (m_lastProgress.isValid() && m_lastProgress.elapsed() < kProgressMs)
            return;
        m_lastProgress.start();
        emit Progress(number, percent, text);
    };
    StageOutcome outcome;
    try {
        outcome = DoStage(order, onProgress);
    } catch (const std::exception& failure) {
        outcome.kind = StageOutcome::Kind::Failed;
        outcome.error = ErrorIn(order.task.next);
        outcome.message = QString::fromUtf8(failure.what());
        outcome.work = order.task.work;
    }
    outcome.stage = order.task.next;
    emit Ended(order.task.number, outcome);
}

StageOutcome SubmitWorker::DoStage(const StageOrder& order, const StageProgress& onProgress)
{
    switch (order.task.next) {
    case SubmitStage::Wait:
    case SubmitStage::Analyze:
        return AnalyzeStage(order, onProgress);
    case SubmitStage::Compress:
        return CompressStage(order, onProgress);
    case SubmitStage::Checksum:
        return ChecksumStage(order, onProgress);
    default:
        break;
    }
    if (!m_farm)
        m_farm = std::make_unique<FarmStages>();
    return m_farm->Run(order, onProgress);
}

void SubmitWorker::Interrupt()
{
    if (m_farm)
        m_farm->Interrupt();
}

void SubmitWorker::Discard(const QString& folder)
{
    QDir(folder).removeRecursively();
}

void SubmitWorker::Sweep(const QString& folder, const QSet<qint64>& numbers)
{
    const QDir packages(folder);
    const QStringList names = packages.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString& name : names) {
        if (!numbers.contains(name.toLongLong()))
            Discard(packages.filePath(name));
    }
}
