#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

namespace farm {

/// How jobs of one type are rendered. Arguments may hold placeholders:
/// {scene} is the scene file and {scene_folder} the folder of all the scene's files; {output} is the picture to write,
/// that is {output_name} with the suffix in {output_folder}. All are paths relative to the scene file's folder, in which
/// the renderer runs, and need no quoting. {width} and {height} are pixels, {frame} is the frame's number, {frames} how
/// many numbers there are from the job's first frame to its last, and {clock} goes from 0 towards 1 over them.
struct JobType
{
    QString program;
    QStringList arguments;
    QString suffix;
    int frameTimeLimit = 3600; // s
    /// The renderer may read nothing but its scene and the machine's programs, and write nothing but its picture.
    bool confined = true;
};

using JobTypes = QMap<QString, JobType>;

/// Reads a JSON file of job types by name. Throws std::runtime_error that says what is wrong with the file.
JobTypes ReadJobTypes(const QString& path);

/// Replaces the placeholders by their values. Placeholders inside values are not replaced; unknown ones stay as they are.
QStringList FillIn(const QStringList& arguments, const QMap<QString, QString>& values);

} // namespace farm
