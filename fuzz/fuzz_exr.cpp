// OpenEXR pictures.
#include "fuzz/fuzz_support.h"
#include "host/ui/exr_header.h"
#include "host/ui/exr_picture.h"

#include <QBuffer>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    QByteArray bytes = Bytes(data, size);
    QBuffer device(&bytes);
    device.open(QIODevice::ReadOnly);
    const auto header = ExrHeader::Read(device);
    // A picture of millions of pixels takes too long for the search.
    constexpr int LongestSide = 500; // pixels
    if (header && (header->size.width() > LongestSide || header->size.height() > LongestSide))
        return 0;
    device.seek(0);
    const PictureFile picture = ExrPicture::Read(device);
    Require(picture.image.isNull() == (picture.error != PictureFile::None), "a picture or an error");
    Require(picture.image.isNull() || (header && picture.image.size() == header->size),
        "the header says how large the picture is");
    return 0;
}
