#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

namespace farm {

/// How jobs of one type are rendered. Arguments hold placeholders: {scene} is the scene file, {scene_folder} the folder
/// of all the scene's files, and the picture is to be {output}, which is {output_folder} with {output_name} and the
/// suffix; these are paths from the scene file's folder, in which the renderer runs, and need no quoting. {width} and
/// {height} are pixels, {frame} is the frame's number, {frames} how many there are from the job's first frame to its
/// last, and {clock} goes from 0 towards 1 over them.
struct JobType
{
    QString program;
    QStringList arguments;
    QString suffix;
    int frameTimeLimitSeconds = 3600;
    /// The renderer may read only its scene, besides the machine's programs, and write only its picture.
    bool confined = true;
};

using JobTypes = QMap<QString, JobType>;

/// Throws std::runtime_error naming what is wrong when the file is missing or does not hold job types.
JobTypes ReadJobTypes(const QString& path);

/// Puts values in place of the placeholders. A value is never searched for placeholders; unknown ones stay.
QStringList FillIn(const QStringList& arguments, const QMap<QString, QString>& values);

} // namespace farm
