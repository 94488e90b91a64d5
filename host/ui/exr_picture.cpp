#include "host/ui/exr_picture.h"

#include "host/ui/exr_header.h"

#include <QIODevice>

#ifdef QSCLIENT_HAS_OPENEXR
#include <OpenEXR/ImfChannelList.h>
#include <OpenEXR/ImfFrameBuffer.h>
#include <OpenEXR/ImfHeader.h>
#include <OpenEXR/ImfInputPart.h>
#include <OpenEXR/ImfIO.h>
#include <OpenEXR/ImfMultiPartInputFile.h>
#include <OpenEXR/ImfPartType.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <vector>
#endif

namespace ExrPicture {

bool IsExr(QIODevice& device)
{
    return device.peek(4) == QByteArray("\x76\x2f\x31\x01");
}

#ifdef QSCLIENT_HAS_OPENEXR

namespace {

using Imath::half;

constexpr int LinesAtOnce = 64;
constexpr int Colors = 3;

class DeviceStream : public Imf::IStream
{
public:
    explicit DeviceStream(QIODevice& device)
        : Imf::IStream("picture")
        , m_device(device)
    {
    }

    bool read(char* bytes, int count) override
    {
        if (m_device.read(bytes, count) != count)
            throw std::runtime_error("the file ends too early");
        return !m_device.atEnd();
    }
    std::uint64_t tellg() override { return std::uint64_t(m_device.pos()); }
    void seekg(std::uint64_t position) override
    {
        if (position > std::uint64_t(m_device.size()) || !m_device.seek(qint64(position)))
            throw std::runtime_error("the file ends too early");
    }

private:
    QIODevice& m_device;
};

/// The brightness on a screen, indexed by the bits of the linear brightness.
const std::vector<uchar>& ScreenValues()
{
    static const std::vector<uchar> values = [] {
        constexpr double LinearEnd = 0.0031308; // end of the curve's straight part
        std::vector<uchar> made(std::size_t(std::numeric_limits<quint16>::max()) + 1);
        for (std::size_t bits = 0; bits < made.size(); ++bits) {
            const double linear = float(half(half::FromBits, quint16(bits)));
            const double bounded = linear > 0 ? std::min(linear, 1.0) : 0.0; // NaN becomes 0 too
            const double screen
                = bounded < LinearEnd ? bounded * 12.92 : 1.055 * std::pow(bounded, 1 / 2.4) - 0.055;
            made[bits] = uchar(std::lround(screen * 255));
        }
        return made;
    }();
    return values;
}

/// The channels for red, green and blue; all the same for a picture in grey. Empty when there are none.
std::array<std::string, Colors> ColorChannels(const Imf::ChannelList& channels)
{
    if (channels.findChannel("R") || channels.findChannel("G") || channels.findChannel("B"))
        return {"R", "G", "B"};
    if (channels.findChannel("Y"))
        return {"Y", "Y", "Y"};
    return {};
}

/// Reads lines of the picture and turns them into lines of the image, a strip at a time.
class StripReader
{
public:
    StripReader(Imf::InputPart& part, const std::array<std::string, Colors>& names)
        : m_part(part)
        , m_window(part.header().dataWindow())
        , m_isGrey(names[0] == names[1])
        , m_width(m_window.max.x - m_window.min.x + 1)
        , m_names(names)
        , m_pixels(std::size_t(m_width) * LinesAtOnce)
    {
    }

    QImage Read()
    {
        const int height = m_window.max.y - m_window.min.y + 1;
        QImage image(m_width, height, QImage::Format_RGB32);
        for (int first = 0; first < height && !image.isNull(); first += LinesAtOnce) {
            const int last = std::min(first + LinesAtOnce, height) - 1;
            ReadStrip(m_window.min.y + first, m_window.min.y + last);
            for (int line = first; line <= last; ++line)
                Convert(std::size_t(line - first), reinterpret_cast<QRgb*>(image.scanLine(line)));
        }
        return image;
    }

private:
    void ReadStrip(int first, int last)
    {
        const Imath::Box2i strip({m_window.min.x, first}, {m_window.max.x, last});
        Imf::FrameBuffer buffer;
        for (std::size_t color = 0; color < std::size_t(m_isGrey ? 1 : Colors); ++color)
            buffer.insert(m_names[color],
                Imf::Slice::Make(Imf::HALF, &m_pixels[0][color], strip, sizeof(Pixel),
                    sizeof(Pixel) * std::size_t(m_width)));
        m_part.setFrameBuffer(buffer);
        m_part.readPixels(first, last);
    }

    void Convert(std::size_t line, QRgb* target) const
    {
        const std::vector<uchar>& screen = ScreenValues();
        const Pixel* source = &m_pixels[line * std::size_t(m_width)];
        for (int x = 0; x < m_width; ++x) {
            const Pixel& pixel = source[x];
            const uchar red = screen[pixel[0].bits()];
            target[x] = m_isGrey ? qRgb(red, red, red)
                                 : qRgb(red, screen[pixel[1].bits()], screen[pixel[2].bits()]);
        }
    }

    using Pixel = std::array<half, Colors>;

    Imf::InputPart& m_part;
    Imath::Box2i m_window;
    bool m_isGrey;
    int m_width;
    std::array<std::string, Colors> m_names;
    std::vector<Pixel> m_pixels;
};

PictureFile ReadPicture(QIODevice& device)
{
    // This limit also holds for further pictures in the file, whose sizes are checked nowhere else.
    Imf::Header::setMaxImageSize(PictureFile::LongestSide, PictureFile::LongestSide);
    Imf::Header::setMaxTileSize(PictureFile::LongestSide, PictureFile::LongestSide);
    DeviceStream stream(device);
    Imf::MultiPartInputFile file(stream, 0, false);
    const Imf::Header& header = file.header(0);
    const auto names = ColorChannels(header.channels());
    if (names[0].empty() || (header.hasType() && Imf::isDeepData(header.type())))
        return {{}, PictureFile::NotAPicture};
    Imf::InputPart part(file, 0);
    const QImage image = StripReader(part, names).Read();
    return {image, image.isNull() ? PictureFile::Broken : PictureFile::None};
}

} // namespace

bool IsSupported()
{
    return true;
}

PictureFile Read(QIODevice& device)
{
    const auto header = ExrHeader::Read(device);
    if (!header)
        return {{}, PictureFile::Broken};
    if (header->IsTooLarge())
        return {{}, PictureFile::TooLarge};
    device.seek(0);
    try {
        return ReadPicture(device);
    } catch (const std::exception&) {
        return {{}, PictureFile::Broken};
    }
}

#else

bool IsSupported()
{
    return false;
}

PictureFile Read(QIODevice& /*device*/)
{
    return {{}, PictureFile::NotAPicture};
}

#endif

} // namespace ExrPicture
