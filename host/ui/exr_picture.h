#pragma once

#include "host/ui/picture_file.h"

class QIODevice;

/// Pictures in the OpenEXR format, if the program was built with its library.
namespace ExrPicture {

bool IsSupported();

/// Whether the device begins like an OpenEXR file. Its position does not change.
bool IsExr(QIODevice& device);

/// Reads the colours, or the brightness of a picture without any, as a screen shows them: anything brighter than white
/// becomes white. See PictureReader::Read().
PictureFile Read(QIODevice& device);

} // namespace ExrPicture
