#pragma once

#include <QtGlobal>

/// Messages of tasks. The window translates them, in its own context.
namespace SubmitText {

constexpr const char* Unreachable
    = QT_TRANSLATE_NOOP("VTQsClientPrivate", "The farm cannot be reached. Trying again.");
constexpr const char* Busy = QT_TRANSLATE_NOOP("VTQsClientPrivate", "The farm is busy. Trying again.");
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

} // namespace SubmitText
