#pragma once

#include "host/rendercore/submit/stage_outcome.h"

/// State changes of one task, caused by stage outcomes and by the user. Pure logic.
namespace SubmitRules {

/// A decision that only the user can make.
enum class Question { None, RetryUpload, AcceptMissingFiles };

/// The question that a halted task waits for.
Question QuestionOf(const SubmitTask& task);

/// Whether the window lets the user edit the task's arguments, as it does for Maya scenes with a lower-case suffix.
bool HasEditableArguments(const SubmitTask& task);

/// Shows the task in its next stage.
void EnterNextStage(SubmitTask& task);

/// Halts the task with an error.
void Halt(SubmitTask& task, SubmitError error, const QString& message);

/// Lets a halted task wait for its turn again.
void Release(SubmitTask& task);

/// Lets a halted task continue at the user's command, whatever the reason for the halt.
/// @param arePackagesThere whether its packages are still on the disk.
void Continue(SubmitTask& task, bool arePackagesThere);

/// Decides at which stage a task that was read from the disk continues.
/// @param arePackagesThere whether its packages are still on the disk.
void Restore(SubmitTask& task, bool arePackagesThere);

/// Applies an outcome of kind Done; the task may halt with a question, or be finished.
void ApplyDone(SubmitTask& task, const StageOutcome& outcome);

/// Applies an outcome of kind TryAgain.
void ApplyTryAgain(SubmitTask& task, const StageOutcome& outcome);

/// Applies an outcome of kind Failed; the task halts.
void ApplyFailed(SubmitTask& task, const StageOutcome& outcome);

} // namespace SubmitRules
