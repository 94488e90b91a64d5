#pragma once

#include <QtGlobal>

/// Messages of tasks. The window translates them in its own context.
namespace SubmitText {

constexpr const char* Unreachable
    = QT_TRANSLATE_NOOP("VTQsClientPrivate", "The farm cannot be reached. Trying again.");
constexpr const char* Busy = QT_TRANSLATE_NOOP("VTQsClientPrivate", "The farm is busy. Trying again.");
constexpr const char* FarmFull
    = QT_TRANSLATE_NOOP("VTQsClientPrivate", "The farm's disk is full. Trying again.");
constexpr const char* SessionEnded
    = QT_TRANSLATE_NOOP("VTQsClientPrivate", "Your session has ended. Please sign in again.");
constexpr const char* Failing = QT_TRANSLATE_NOOP(
    "VTQsClientPrivate", "The farm has failed several times. Please continue the submission later.");
constexpr const char* TooManyFiles
    = QT_TRANSLATE_NOOP("VTQsClientPrivate", "The scene needs too many files, or their paths are too long.");
constexpr const char* Stopped = QT_TRANSLATE_NOOP("VTQsClientPrivate", "Stopped.");
constexpr const char* NotWithout
    = QT_TRANSLATE_NOOP("VTQsClientPrivate", "Not submitted, because files are missing.");
constexpr const char* CheckArguments
    = QT_TRANSLATE_NOOP("VTQsClientPrivate", "Please check the arguments, then continue.");
constexpr const char* SceneUnreadable
    = QT_TRANSLATE_NOOP("VTQsClientPrivate", "The scene file cannot be read.");
constexpr const char* NotRecorded
    = QT_TRANSLATE_NOOP("VTQsClientPrivate", "The submission could not be recorded. The disk may be full.");
constexpr const char* SceneNameRefused = QT_TRANSLATE_NOOP(
    "VTQsClientPrivate", "The name of the scene file contains characters that the farm does not accept.");
constexpr const char* NoPackageFolder = QT_TRANSLATE_NOOP(
    "VTQsClientPrivate", "The folder for packed files cannot be created. The disk may be full.");
constexpr const char* PackageUnreadable
    = QT_TRANSLATE_NOOP("VTQsClientPrivate", "The packed file cannot be read from the disk.");
constexpr const char* NotStored = QT_TRANSLATE_NOOP(
    "VTQsClientPrivate", "The farm did not store the uploaded data. Please try again later.");
constexpr const char* ArrivedDamaged
    = QT_TRANSLATE_NOOP("VTQsClientPrivate", "The file arrived damaged at the farm.");
constexpr const char* AnswerUnreadable
    = QT_TRANSLATE_NOOP("VTQsClientPrivate", "The farm's answer about an upload cannot be read.");
constexpr const char* AnswerIncomplete = QT_TRANSLATE_NOOP(
    "VTQsClientPrivate", "The farm's answer is incomplete. Please continue the submission later.");

constexpr const char* BlenderReads = QT_TRANSLATE_NOOP("VTQsClientPrivate", "Blender is reading the scene.");
constexpr const char* BlenderLacking = QT_TRANSLATE_NOOP("VTQsClientPrivate",
    "Blender is not installed on this computer, so nobody can tell which files the scene needs. Please "
    "install it, then submit the scene again.");
constexpr const char* BlenderFailed = QT_TRANSLATE_NOOP(
    "VTQsClientPrivate", "Blender could not read the scene, or took more than ten minutes.");

// These stand in the list of missing files, because the user has to agree to them as well.
constexpr const char* OtherEngine = QT_TRANSLATE_NOOP("VTQsClientPrivate",
    "The scene is made for the engine %1; the farm will render it with Cycles if you go on.");
constexpr const char* CountedFromOne = QT_TRANSLATE_NOOP("VTQsClientPrivate",
    "The scene's first frame is %1; the farm will render it as frame 1, and so on, if you go on.");
constexpr const char* FramesLeftOut = QT_TRANSLATE_NOOP("VTQsClientPrivate",
    "The scene has the frames %1 to %2; the farm will render only %3 to %4 if you go on.");

// Stands for a file in the list of missing files.
constexpr const char* Outside
    = QT_TRANSLATE_NOOP("VTQsClientPrivate", "%1 (outside the scene's folder; will be sent if you go on)");

} // namespace SubmitText
