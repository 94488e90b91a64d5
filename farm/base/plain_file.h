#pragma once

#include <QFile>

namespace farm {

/// Opens a file for reading that a renderer may have replaced. Returns false for a link, a pipe and anything else that
/// is not a regular file.
bool OpenPlainFile(QFile& file, const QString& path);

} // namespace farm
