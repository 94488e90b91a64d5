#include "host/ui/picture_reader.h"

#include "host/ui/exr_picture.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>

namespace {

constexpr int MostBitsPerPixel = 64;

// Formats that renderers write. SVG and other formats that are interpreted like programs are left out on purpose.
constexpr const char* Formats[]
    = {"png", "jpg", "jpeg", "bmp", "gif", "ppm", "pgm", "pbm", "tif", "tiff", "tga", "webp"};

bool IsKnown(const QByteArray& format)
{
    return std::any_of(
        std::begin(Formats), std::end(Formats), [&format](const char* known) { return format == known; });
}

bool IsTooLarge(const QImageReader& reader)
{
    const QSize size = reader.size();
    if (size.width() > PictureFile::LongestSide || size.height() > PictureFile::LongestSide)
        return true;
    const QImage::Format format = reader.imageFormat();
    const int bits
        = format == QImage::Format_Invalid ? MostBitsPerPixel : QImage::toPixelFormat(format).bitsPerPixel();
    return static_cast<qint64>(size.width()) * size.height() * bits / 8 > PictureFile::MostBytes;
}

} // namespace

namespace PictureReader {

PictureFile Read(const QString& file)
{
    // Reading a pipe, for example, would never end.
    if (!QFileInfo(file).isFile())
        return {{}, PictureFile::Missing};
    QFile device(file);
    if (!device.open(QIODevice::ReadOnly))
        return {{}, PictureFile::Missing};
    if (ExrPicture::IsExr(device))
        return ExrPicture::Read(device);
    QImageReader reader(&device);
    reader.setDecideFormatFromContent(true);
    if (!reader.canRead() || !IsKnown(reader.format()))
        return {{}, PictureFile::NotAPicture};
    if (!reader.size().isValid() || reader.size().isEmpty())
        return {{}, PictureFile::Broken};
    if (IsTooLarge(reader))
        return {{}, PictureFile::TooLarge};
    const QImage image = reader.read();
    return image.isNull() ? PictureFile {{}, PictureFile::Broken} : PictureFile {image, PictureFile::None};
}

QStringList InSameFolder(const QString& file)
{
    const QFileInfo info(file);
    QStringList filters;
    for (const char* format : Formats)
        filters.append(QLatin1String("*.") + QLatin1String(format));
    if (ExrPicture::IsSupported())
        filters.append(QStringLiteral("*.exr"));
    QStringList names = info.dir().entryList(filters, QDir::Files);
    if (!names.contains(info.fileName()))
        names.append(info.fileName());
    names.sort();
    return names;
}

} // namespace PictureReader
