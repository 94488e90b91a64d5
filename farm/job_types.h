#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

namespace farm {

/// How jobs of one type are rendered. Arguments hold placeholders: {scene} and {output} are file names in the
/// job's folder, {width} and {height} are pixels, {frame} counts from 1 to {frames} and {clock} goes from 0
/// towards 1.
struct JobType
{
    QString program;
    QStringList arguments;
    QString suffix;
    int frameTimeLimitSeconds = 3600;
};

using JobTypes = QMap<QString, JobType>;

/// Throws std::runtime_error naming what is wrong when the file is missing or does not hold job types.
JobTypes ReadJobTypes(const QString& path);

/// Puts values in place of the placeholders. A value is never searched for placeholders; unknown ones stay.
QStringList FillIn(const QStringList& arguments, const QMap<QString, QString>& values);

} // namespace farm
