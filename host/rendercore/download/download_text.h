#pragma once

#include <QtGlobal>

/// Sentences of the TaskMessages of downloads.
namespace DownloadText {

constexpr const char* NoFarm = QT_TRANSLATE_NOOP("TaskMessage", "The farm is not available at the moment.");
constexpr const char* Stalled = QT_TRANSLATE_NOOP("TaskMessage", "The farm has stopped sending %1.");
constexpr const char* Interrupted = QT_TRANSLATE_NOOP("TaskMessage", "The transfer of %1 was interrupted.");
constexpr const char* InterruptedBecause
    = QT_TRANSLATE_NOOP("TaskMessage", "The transfer of %1 was interrupted: %2");
constexpr const char* NotNow = QT_TRANSLATE_NOOP("TaskMessage", "The farm cannot send %1 at the moment: %2");
constexpr const char* Refused = QT_TRANSLATE_NOOP("TaskMessage", "The farm refuses to send %1: %2");
constexpr const char* NextAttempt = QT_TRANSLATE_NOOP("TaskMessage", "%1 The next attempt is in %2 s.");

constexpr const char* Changed = QT_TRANSLATE_NOOP("TaskMessage", "%1 has changed on the farm.");
constexpr const char* SizeChanged
    = QT_TRANSLATE_NOOP("TaskMessage", "The size of %1 has changed on the farm.");
constexpr const char* OtherPart
    = QT_TRANSLATE_NOOP("TaskMessage", "The farm sent a different part of %1 than requested.");
constexpr const char* TooMuch
    = QT_TRANSLATE_NOOP("TaskMessage", "The farm sent more data for %1 than announced.");
constexpr const char* Damaged
    = QT_TRANSLATE_NOOP("TaskMessage", "%1 arrived damaged: its checksum is wrong.");
constexpr const char* Gone = QT_TRANSLATE_NOOP("TaskMessage", "The farm no longer has %1.");
constexpr const char* NotSent = QT_TRANSLATE_NOOP("TaskMessage", "The farm lists %1, but does not send it.");

constexpr const char* LeadsOut = QT_TRANSLATE_NOOP("TaskMessage",
    "The folder %1 is a link that leads out of the download folder, so nothing is saved there.");
constexpr const char* NotSaved = QT_TRANSLATE_NOOP("TaskMessage", "%1 cannot be saved: %2.");
constexpr const char* NameTaken = QT_TRANSLATE_NOOP("TaskMessage", "Another file named %1 is in the way.");
constexpr const char* NotRecorded = QT_TRANSLATE_NOOP(
    "TaskMessage", "%1 was saved, but its state could not be recorded. The disk may be full.");

} // namespace DownloadText
