#pragma once

#include <QList>
#include <QStringList>

/// A job type to choose from: its key in the configuration file, its first part and its second part, which is the
/// text shown.
using VTJobType = QStringList;

/// The job types of the client's configuration file: the keys of its group "vtr.rendering" hold lists of entries
/// "first&second". Entries of another form are skipped; a file that cannot be read has no types.
QList<VTJobType> VTReadJobTypes(const QString& strPath);
