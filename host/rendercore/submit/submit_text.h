#pragma once

#include <QtGlobal>

/// Sentences of the TaskMessages of submissions.
namespace SubmitText {

constexpr const char* Unreachable
    = QT_TRANSLATE_NOOP("TaskMessage", "The farm cannot be reached. Trying again.");
constexpr const char* Busy = QT_TRANSLATE_NOOP("TaskMessage", "The farm is busy. Trying again.");
constexpr const char* FarmFull = QT_TRANSLATE_NOOP("TaskMessage", "The farm's disk is full. Trying again.");
constexpr const char* SessionEnded
    = QT_TRANSLATE_NOOP("TaskMessage", "Your session has ended. Please sign in again.");
constexpr const char* Failing = QT_TRANSLATE_NOOP(
    "TaskMessage", "The farm has failed several times. Please continue the submission later.");
constexpr const char* TooManyFiles
    = QT_TRANSLATE_NOOP("TaskMessage", "The scene needs too many files, or their paths are too long.");
constexpr const char* MoreFiles = QT_TRANSLATE_NOOP("TaskMessage", "The scene needs more than %1 files.");
constexpr const char* Stopped = QT_TRANSLATE_NOOP("TaskMessage", "Stopped.");
constexpr const char* NotWithout
    = QT_TRANSLATE_NOOP("TaskMessage", "Not submitted, because files are missing.");
constexpr const char* CheckArguments
    = QT_TRANSLATE_NOOP("TaskMessage", "Please check the arguments, then continue.");
constexpr const char* SceneUnreadable = QT_TRANSLATE_NOOP("TaskMessage", "The scene file cannot be read.");
constexpr const char* PartUnreadable
    = QT_TRANSLATE_NOOP("TaskMessage", "A file of the scene cannot be read: %1");
constexpr const char* NotRecorded
    = QT_TRANSLATE_NOOP("TaskMessage", "The submission could not be recorded. The disk may be full.");
constexpr const char* SceneNameRefused = QT_TRANSLATE_NOOP(
    "TaskMessage", "The name of the scene file contains characters that the farm does not accept.");
constexpr const char* NoPackageFolder = QT_TRANSLATE_NOOP(
    "TaskMessage", "The folder for packed files cannot be created. The disk may be full.");
constexpr const char* FileUnreadable = QT_TRANSLATE_NOOP("TaskMessage", "A file cannot be read: %1");
constexpr const char* FileNotPacked = QT_TRANSLATE_NOOP("TaskMessage", "A file cannot be packed: %1");
constexpr const char* PackageNotWritten = QT_TRANSLATE_NOOP("TaskMessage", "A package cannot be written: %1");
constexpr const char* PackageUnreadable
    = QT_TRANSLATE_NOOP("TaskMessage", "The packed file cannot be read from the disk.");
constexpr const char* NotStored
    = QT_TRANSLATE_NOOP("TaskMessage", "The farm did not store the uploaded data. Please try again later.");
constexpr const char* ArrivedDamaged
    = QT_TRANSLATE_NOOP("TaskMessage", "The file arrived damaged at the farm.");
constexpr const char* AnswerUnreadable
    = QT_TRANSLATE_NOOP("TaskMessage", "The farm's answer about an upload cannot be read.");
constexpr const char* AnswerIncomplete = QT_TRANSLATE_NOOP(
    "TaskMessage", "The farm's answer is incomplete. Please continue the submission later.");

constexpr const char* Files = QT_TRANSLATE_NOOP("TaskMessage", "%1 files belong to the scene:");
constexpr const char* Submitted = QT_TRANSLATE_NOOP("TaskMessage", "Submitted as job %1.");

constexpr const char* BlenderReads = QT_TRANSLATE_NOOP("TaskMessage", "Blender is reading the scene.");
constexpr const char* BlenderLacking = QT_TRANSLATE_NOOP("TaskMessage",
    "Blender is not installed on this computer, so nobody can tell which files the scene needs. Please "
    "install it, then submit the scene again.");
constexpr const char* BlenderFailed
    = QT_TRANSLATE_NOOP("TaskMessage", "Blender could not read the scene, or took more than ten minutes.");

// These are added to the list of missing files, because the user has to agree to them as well.
constexpr const char* OtherEngine = QT_TRANSLATE_NOOP(
    "TaskMessage", "The scene is made for the engine %1; the farm will render it with Cycles if you go on.");
constexpr const char* CountedFromOne = QT_TRANSLATE_NOOP("TaskMessage",
    "The scene's first frame is %1; the farm will render it as frame 1, and so on, if you go on.");
constexpr const char* FramesLeftOut = QT_TRANSLATE_NOOP(
    "TaskMessage", "The scene has the frames %1 to %2; the farm will render only %3 to %4 if you go on.");

// These take the place of names in the list of missing files.
constexpr const char* Absolute = QT_TRANSLATE_NOOP("TaskMessage", "%1 (use a path relative to the scene)");
constexpr const char* Outside
    = QT_TRANSLATE_NOOP("TaskMessage", "%1 (outside the scene's folder; will be sent if you go on)");

} // namespace SubmitText
