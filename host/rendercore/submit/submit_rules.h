#pragma once

#include "host/rendercore/submit/stage_outcome.h"

/// State changes of one task, caused by stage outcomes and by the user. Pure logic.
namespace SubmitRules {

/// A decision that only the user can make.
enum class Question { None, RetryUpload, AcceptMissingFiles };

/// The question that a halted task waits for.
Question QuestionOf(const SubmitTask& task);

/// Whether the upload of the task's files was refused because they would exceed the account's space on the farm.
bool LacksSpace(const SubmitTask& task);

/// Whether the user has to be asked about missing files before the farm learns anything of the task.
bool MustAskFirst(const SubmitTask& task);

/// Whether the window lets the user edit the task's arguments, as it does for Maya scenes with a lower-case suffix.
bool HasEditableArguments(const SubmitTask& task);

/// The reason, in a few words, why the task stands still; empty where the name of its stage is enough.
QString HaltText(const SubmitTask& task);

/// The files that belong to the task, for the user to read before they are sent; empty before the analysis.
TaskMessage FileList(const SubmitWork& work);

/// Shows the task in its next stage.
void EnterNextStage(SubmitTask& task);

/// Halts the task with an error.
void Halt(SubmitTask& task, SubmitError error, const TaskMessage& message);

/// Lets a halted task wait for its turn again.
void Release(SubmitTask& task);

/// Lets a halted task continue at the user's command, whatever the reason for the halt.
void Continue(SubmitTask& task);

/// Sets the arguments that the user has edited. An invalid width or height falls back to the scene's.
/// @return false, and nothing is changed, when the frames are invalid.
bool SetArguments(SubmitTask& task, const QVariantList& arguments);

/// Decides at which stage a task that was read from the disk continues.
void Restore(SubmitTask& task);

/// Applies an outcome of kind Done; the task may be finished.
void ApplyDone(SubmitTask& task, const StageOutcome& outcome);

/// Applies an outcome of kind TryAgain.
void ApplyTryAgain(SubmitTask& task, const StageOutcome& outcome);

/// Applies an outcome of kind Failed; the task halts.
void ApplyFailed(SubmitTask& task, const StageOutcome& outcome);

} // namespace SubmitRules
