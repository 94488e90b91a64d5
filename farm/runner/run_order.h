#pragma once

#include "farm/runner/run.h"

#include <QJsonValue>

#include <optional>

namespace farm {

/// The part of the machine that a renderer may use.
struct Reach
{
    /// Whether only programs, libraries, fonts and the paths below may be used; otherwise everything but the hidden
    /// folder.
    bool confined = true;
    QStringList readable;
    QStringList writable;
    /// The farm's data. Only its parts below `readable` and `writable` can be reached, confined or not.
    QString hidden;
};

/// Everything that quillstar-run-frame needs to know about a run.
struct RunOrder
{
    RunId id;
    QString program;
    QStringList arguments;
    /// The folder in which the renderer runs.
    QString folder;
    Resources resources;
    /// A regular expression that matches the output of a renderer that failed because it got no licence; may be empty.
    QString licenceMissing;
    Reach reach;
    RunFiles files;
    /// The user who runs the renderer where quillstar-run-frame runs as root; empty for the same user.
    QString user;
};

/// The texts of a list; an entry that is not a text reads as an empty one.
QStringList TextsIn(const QJsonValue& list);

/// Writes the order to its file. Throws std::runtime_error.
void WriteOrder(const RunOrder& order);
/// Throws std::runtime_error.
RunOrder ReadOrder(const QString& file);

/// Throws std::runtime_error.
void WriteOutcome(const QString& file, const RunResult& result);
/// @return nothing while the run has not ended, or when the file cannot be read.
std::optional<RunResult> ReadOutcome(const QString& file);

} // namespace farm
