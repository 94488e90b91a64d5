#include "host/rendercore/submit/submit_rules.h"

#include "host/farmclient/farm_numbers.h"
#include "host/rendercore/submit/submit_arguments.h"
#include "host/rendercore/submit/submit_text.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <algorithm>

namespace {

using namespace SubmitRules;

constexpr int MostWhenHalted = 99; // percent; a full bar would look like success
constexpr int MostListed = 30;     // files; more would not fit into a tool tip

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
    const QVector<TaskMessage>& missing = outcome.work.missing;
    task.goesOnWithout = task.goesOnWithout
        && std::all_of(missing.cbegin(), missing.cend(),
            [&task](const TaskMessage& file) { return task.work.missing.contains(file); });
}

} // namespace

namespace SubmitRules {

Question QuestionOf(const SubmitTask& task)
{
    if (task.error == SubmitError::UploadRefused)
        return Question::RetryUpload;
    return AwaitsMissingFiles(task) ? Question::AcceptMissingFiles : Question::None;
}

bool LacksSpace(const SubmitTask& task)
{
    // A full disk of the farm halts no task: it is tried again.
    return (task.error == SubmitError::UploadRefused || task.error == SubmitError::GivenUp)
        && task.message.HasFault(HttpStatus::InsufficientStorage);
}

bool MustAskFirst(const SubmitTask& task)
{
    return task.next == SubmitStage::CopySame && !task.work.missing.isEmpty() && !task.goesOnWithout;
}

bool HasEditableArguments(const SubmitTask& task)
{
    const QString suffix = QFileInfo(task.scene).suffix();
    return suffix == QLatin1String("ma") || suffix == QLatin1String("mb");
}

QString HaltText(const SubmitTask& task)
{
    if (task.error == SubmitError::TexturesMissing || AwaitsMissingFiles(task))
        return QCoreApplication::translate("SubmitRules", "Texture missing");
    if (task.error == SubmitError::AwaitsUser)
        return QCoreApplication::translate("SubmitRules", "Check arguments");
    if (task.error == SubmitError::Stopped)
        return QCoreApplication::translate("SubmitRules", "Paused");
    if (LacksSpace(task))
        return QCoreApplication::translate("SubmitRules", "No space left");
    if (task.error != SubmitError::None && task.stage == SubmitStage::Submit)
        return QCoreApplication::translate("SubmitRules", "Submission failed");
    return {};
}

TaskMessage FileList(const SubmitWork& work)
{
    QVector<TaskMessage> lines;
    const auto listed = work.files.mid(0, MostListed);
    for (const PackedFile& file : listed)
        lines.append(file.source);
    if (work.files.size() > 1)
        lines.prepend(TaskMessage(SubmitText::Files, {QString::number(work.files.size())}));
    if (work.files.size() > MostListed)
        lines.append(QStringLiteral("…"));
    return TaskMessage::Lines(lines);
}

void EnterNextStage(SubmitTask& task)
{
    if (task.stage == task.next)
        return;
    task.stage = task.next;
    task.progress = 0;
    task.message = FileList(task.work);
    task.uploadText = {};
}

void Halt(SubmitTask& task, SubmitError error, const TaskMessage& message)
{
    task.error = error;
    if (error != SubmitError::None)
        task.progress = qMin(task.progress, MostWhenHalted);
    task.message = message;
    task.uploadText = {};
}

void Release(SubmitTask& task)
{
    task.error = SubmitError::None;
    task.message = {};
    task.refused.clear();
    task.stage = SubmitStage::Wait;
    task.progress = 0;
}

void Continue(SubmitTask& task)
{
    if (task.error == SubmitError::TexturesMissing || AwaitsMissingFiles(task)) {
        task.goesOnWithout = true;
        task.next = SubmitStage::Analyze; // the missing files may be in place by now
    } else if (task.error == SubmitError::AwaitsUser) {
        task.areArgumentsChecked = true;
    }
    // Time has passed: the farm may have forgotten uploads, and packages may be gone.
    if (task.next == SubmitStage::Upload || task.next == SubmitStage::Uncompress)
        task.next = SubmitStage::CopySame;
    Release(task);
}

bool SetArguments(SubmitTask& task, const QVariantList& arguments)
{
    const QVariantList usable = WithUsableSizes(arguments);
    if (!AreArguments(usable))
        return false;
    task.arguments = usable;
    task.areArgumentsEdited = true;
    return true;
}

void Restore(SubmitTask& task)
{
    task.progress = task.isDone ? 100 : 0;
    // Packages that the farm could not unpack are rebuilt.
    const bool areSpoilt = task.error == SubmitError::UploadRefused && task.stage == SubmitStage::Uncompress;
    const bool isReady = task.work.IsHashed() && !areSpoilt && AreArguments(task.arguments);
    task.next = isReady ? SubmitStage::CopySame : SubmitStage::Analyze;
}

void ApplyDone(SubmitTask& task, const StageOutcome& outcome)
{
    if (outcome.stage == SubmitStage::Submit) {
        task.isDone = true;
        task.stage = SubmitStage::Submit;
        task.progress = 100;
        Halt(task, SubmitError::None, {SubmitText::Submitted, {outcome.job}});
        return;
    }
    if (outcome.stage == SubmitStage::Analyze)
        ApplyAnalysis(task, outcome);
    task.work = outcome.work;
    task.next = outcome.next;
    if (!task.IsRunnable())
        return; // stopped meanwhile
    task.message = FileList(task.work);
    task.uploadText = {};
    task.progress = 100;
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
    QVector<TaskMessage> lines {outcome.message};
    for (const QString& file : outcome.refused)
        lines.append(file);
    Halt(task, outcome.error, TaskMessage::Lines(lines));
}

} // namespace SubmitRules
