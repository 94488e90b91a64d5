#include "host/ui/picture_file.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>

namespace {

constexpr int longestSide = 16384;
constexpr qint64 mostBytes = 512LL * 1024 * 1024;
constexpr int mostBitsPerPixel = 64;

// What renderers write. Formats that are programs of a kind, such as SVG, are not among them.
constexpr const char* formats[]
    = {"png", "jpg", "jpeg", "bmp", "gif", "ppm", "pgm", "pbm", "tif", "tiff", "tga", "webp"};

bool IsKnown(const QByteArray& format)
{
    return std::any_of(
        std::begin(formats), std::end(formats), [&format](const char* known) { return format == known; });
}

bool IsTooLarge(const QImageReader& reader)
{
    const QSize size = reader.size();
    if (size.width() > longestSide || size.height() > longestSide)
        return true;
    const QImage::Format format = reader.imageFormat();
    const int bits
        = format == QImage::Format_Invalid ? mostBitsPerPixel : QImage::toPixelFormat(format).bitsPerPixel();
    return static_cast<qint64>(size.width()) * size.height() * bits / 8 > mostBytes;
}

} // namespace

PictureFile PictureFile::Read(const QString& file)
{
    // A pipe, for one, would never end.
    if (!QFileInfo(file).isFile())
        return {{}, Missing};
    QFile device(file);
    if (!device.open(QIODevice::ReadOnly))
        return {{}, Missing};
    QImageReader reader(&device);
    reader.setDecideFormatFromContent(true);
    if (!reader.canRead() || !IsKnown(reader.format()))
        return {{}, NoPicture};
    if (!reader.size().isValid() || reader.size().isEmpty())
        return {{}, Broken};
    if (IsTooLarge(reader))
        return {{}, TooLarge};
    const QImage image = reader.read();
    return image.isNull() ? PictureFile {{}, Broken} : PictureFile {image, None};
}

QStringList PictureFile::Siblings(const QString& file)
{
    const QFileInfo info(file);
    QStringList filters;
    for (const char* format : formats)
        filters.append(QLatin1String("*.") + QLatin1String(format));
    QStringList names = info.dir().entryList(filters, QDir::Files);
    if (!names.contains(info.fileName()))
        names.append(info.fileName());
    names.sort();
    QStringList files;
    for (const QString& name : qAsConst(names))
        files.append(info.dir().filePath(name));
    return files;
}
