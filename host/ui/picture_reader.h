#pragma once

#include "host/ui/picture_file.h"

#include <QStringList>

/// Reads pictures of all formats that renderers write.
namespace PictureReader {

/// Reads a file from an untrusted source: the format is recognised by its content, and its size is checked before it is
/// decoded. May be called in any thread.
PictureFile Read(const QString& file);

/// @return the names of the pictures in the same folder, including the file itself, sorted.
QStringList InSameFolder(const QString& file);

} // namespace PictureReader
