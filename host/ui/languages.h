#pragma once

#include <QStringList>

/// Languages are files named "vtr_<locale>.qm" in one folder.
namespace Languages {

/// Absolute paths of the language files of a folder, by name.
QStringList Files(const QString& folder);

/// The language's name in itself, for example "Deutsch".
QString DisplayName(const QString& file);

} // namespace Languages
