#pragma once

#include "farm/runner/run.h"

#include <QMap>
#include <QRegularExpression>
#include <QString>
#include <QStringList>

namespace farm {

/// The render command of a job type. Its arguments may contain placeholders:
/// {scene} is the scene file and {scene_folder} the folder of all the scene's files; {output} is the picture to write:
/// {output_name} with the suffix, in {output_folder}. All are paths relative to the scene file's folder, in which the
/// renderer runs, and need no quoting. {width} and {height} are in pixels. {frame} is the frame's number, {frames} the
/// count of numbers from the job's first frame to its last, gaps included, and {clock} goes from 0 towards 1 over them.
/// {cores} is the number of cores that the type asks for, and {script} the whole text of its script.
struct JobType
{
    QString program;
    QStringList arguments;
    QString suffix;
    /// The text of a script for the renderer. Passed as text, it need not be installed where frames are rendered.
    QString script;
    /// Resources that a frame asks for, and its limits.
    Resources resources;
    /// Whether the renderer may read only its scene and the machine's programs, and write only its picture.
    bool confined = true;
    /// Further paths that a confined renderer may use, such as devices and licence files.
    QStringList readable;
    QStringList writable;
    /// The most frames of the type that are rendered at a time, for example as many as there are licences; 0 for any number.
    int framesAtOnce = 0;
    /// Matches reports of progress in the renderer's output, with two groups: the work that is done, and all of it. A
    /// further pair of groups describes the piece of work that the pair before it has reached. Empty for no reports.
    QRegularExpression progress;
    /// Matches the output of a renderer that failed because it got no licence. Empty when such failures cannot be told
    /// from others.
    QRegularExpression licenceMissing;
    /// Settings of this type on a Slurm cluster: "partition", "account", "qos", "constraint" and "frames_per_task".
    QMap<QString, QString> slurm;
};

using JobTypes = QMap<QString, JobType>;

/// Reads a JSON file that maps names to job types. Throws std::runtime_error, which says what is wrong with the file.
JobTypes ReadJobTypes(const QString& path);

/// Replaces placeholders with their values. Placeholders inside values are not replaced; unknown ones stay as they are.
QStringList FillIn(const QStringList& arguments, const QMap<QString, QString>& values);

} // namespace farm
