#pragma once

#include <QStringList>

namespace farm {

/// Whether `path` is `folder` or below it; both are canonical.
bool IsWithin(const QString& path, const QString& folder);

/// All paths under which the folder can be reached: a disk, or a part of it, may be mounted at several places.
/// @param mounts is the text of /proc/self/mountinfo.
QStringList NamesOf(const QString& folder, const QByteArray& mounts);

} // namespace farm
