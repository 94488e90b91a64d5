#pragma once

#include <QList>
#include <QStringList>

/// A job type that the user can choose: its key in the configuration file, its first part, and its second part, which
/// is shown.
using VTJobType = QStringList;

/// Reads the job types from the client's configuration file. The keys of its group "vtr.rendering" hold lists of
/// entries "first&second"; entries of another form are skipped. A file that cannot be read has no types.
QList<VTJobType> VTReadJobTypes(const QString& strPath);
