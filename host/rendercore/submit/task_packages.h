#pragma once

#include "host/rendercore/submit/submit_task.h"

#include <QSet>

/// The packages of submissions on this disk: a folder for each task, in it its ZIP archives.
namespace TaskPackages {

/// The folder of one task.
/// @param root holds the folders of all tasks.
QString Folder(const QString& root, qint64 task);

/// The package with this index.
QString Path(const QString& folder, int package);

/// Whether the file's package is on the disk with the size that it was made with.
bool Holds(const QString& folder, const SubmitWork& work, const PackedFile& file);

/// Deletes the packages of one task.
void Discard(const QString& folder);

/// Deletes the packages of all tasks but these: a client that was killed may have left some behind.
void Sweep(const QString& root, const QSet<qint64>& tasks);

} // namespace TaskPackages
