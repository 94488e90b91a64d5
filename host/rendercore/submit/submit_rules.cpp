#include "host/rendercore/submit/submit_rules.h"

#include "host/rendercore/submit/submit_arguments.h"
#include "host/rendercore/submit/submit_text.h"

#include <QFileInfo>

#include <algorithm>

namespace {

using namespace SubmitRules;

bool AwaitsMissingFiles(const SubmitTask& task)
{
    return task.error == SubmitError::AwaitsUser && task.stage == SubmitStage::CopySame;
}

/// Arguments that the user has set survive another analysis. So do the user's approval of the scene's own arguments
/// and of missing files, as long as the analysis finds nothing new.
void ApplyAnalysis(SubmitTask& task, const StageOutcome& outcome)
{
    if (!task.areArgumentsEdited && task.arguments != outcome.arguments) {
        task.areArgumentsChecked = false;
        task.arguments = outcome.arguments;
    }
    const QStringList& missing = outcome.work.missing;
    task.goesOnWithout = task.goesOnWithout
        && std::all_of(missing.cbegin(), missing.cend(),
            [&task](const QString& file) { return task.work.missing.contains(file); });
}

} // namespace

namespace SubmitRules {

Question QuestionOf(const SubmitTask& task)
{
    if (task.error == SubmitError::UploadRefused)
        return Question::RetryUpload;
    return AwaitsMissingFiles(task) ? Question::AcceptMissingFiles : Question::None;
}

bool HasEditableArguments(const SubmitTask& task)
{
    const QString suffix = QFileInfo(task.scene).suffix();
    return suffix == QLatin1String("ma") || suffix == QLatin1String("mb");
}

void EnterNextStage(SubmitTask& task)
{
    if (task.stage == task.next)
        return;
    task.stage = task.next;
    task.progress = 0;
    task.message.clear();
    task.uploadText.clear();
}

void Halt(SubmitTask& task, SubmitError error, const QString& message)
{
    task.error = error;
    task.message = message;
    task.uploadText.clear();
}

void Release(SubmitTask& task)
{
    task.error = SubmitError::None;
    task.message.clear();
    task.refused.clear();
    task.stage = SubmitStage::Wait;
    task.progress = 0;
}

void Continue(SubmitTask& task, bool arePackagesThere)
{
    if (task.error == SubmitError::TexturesMissing || AwaitsMissingFiles(task)) {
        task.goesOnWithout = true;
        task.next = SubmitStage::Analyze; // the missing files may be in place by now
    } else if (task.error == SubmitError::AwaitsUser) {
        task.areArgumentsChecked = true;
    }
    if (NeedsFarm(task.next) && !arePackagesThere)
        task.next = SubmitStage::Analyze;
    Release(task);
}

void Restore(SubmitTask& task, bool arePackagesThere)
{
    task.progress = task.isDone ? 100 : 0;
    // Packages that the farm could not unpack are rebuilt.
    const bool areSpoilt = task.error == SubmitError::UploadRefused && task.stage == SubmitStage::Uncompress;
    const bool arePackagesUsable = arePackagesThere && !areSpoilt && AreArguments(task.arguments);
    task.next = arePackagesUsable ? SubmitStage::CopySame : SubmitStage::Analyze;
}

void ApplyDone(SubmitTask& task, const StageOutcome& outcome)
{
    if (outcome.stage == SubmitStage::Submit) {
        task.isDone = true;
        task.stage = SubmitStage::Submit;
        task.progress = 100;
        Halt(task, SubmitError::None, QStringLiteral("Submitted as job %1.").arg(outcome.message));
        return;
    }
    if (outcome.stage == SubmitStage::Analyze)
        ApplyAnalysis(task, outcome);
    task.work = outcome.work;
    const bool mustAsk
        = outcome.stage == SubmitStage::CopySame && !task.work.missing.isEmpty() && !task.goesOnWithout;
    task.next = mustAsk ? SubmitStage::CopySame : outcome.next;
    if (!task.IsRunnable())
        return; // stopped meanwhile
    task.message.clear();
    task.uploadText.clear();
    task.progress = 100;
    if (mustAsk)
        Halt(task, SubmitError::AwaitsUser, task.work.missing.join(QLatin1Char('\n')));
}

void ApplyTryAgain(SubmitTask& task, const StageOutcome& outcome)
{
    task.work = outcome.work;
    task.next = outcome.next;
    task.message = outcome.message;
    task.uploadText = outcome.message;
}

void ApplyFailed(SubmitTask& task, const StageOutcome& outcome)
{
    if (outcome.stage == SubmitStage::Upload || outcome.stage == SubmitStage::Uncompress) {
        task.work = outcome.work;
        task.refused = outcome.refused;
    }
    // A package that could not be made, or that the farm could not unpack, is rebuilt from the scene.
    if (outcome.stage == SubmitStage::Compress || outcome.stage == SubmitStage::Checksum
        || outcome.stage == SubmitStage::Uncompress)
        task.next = SubmitStage::Analyze;
    Halt(task, outcome.error,
        QStringList(QStringList(outcome.message) + outcome.refused).join(QLatin1Char('\n')));
}

} // namespace SubmitRules
