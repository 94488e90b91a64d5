#include "host/ui/exr_header.h"

#include "host/ui/picture_file.h"

#include <QByteArray>
#include <QIODevice>
#include <QtEndian>

#include <limits>

namespace {

constexpr quint32 Magic = 20000630;
constexpr quint32 DeepFlag = 0x800;
constexpr int LongestName = 255;
constexpr qint64 LongestAttribute = 1024LL * 1024; // bytes
constexpr int MostAttributes = 1000;
constexpr int BytesPerChannel = 4;
constexpr int LinesPerBlock = 256; // lines per block of the compression with the largest blocks
constexpr int ChannelTail = 16;    // bytes that follow the name of a channel

std::optional<quint32> ReadNumber(QIODevice& device)
{
    const QByteArray bytes = device.read(sizeof(quint32));
    if (bytes.size() != sizeof(quint32))
        return std::nullopt;
    return qFromLittleEndian<quint32>(bytes.constData());
}

/// @return none unless the name ends within its limit.
std::optional<QByteArray> ReadName(QIODevice& device)
{
    QByteArray name;
    char next = 0;
    while (device.getChar(&next)) {
        if (next == '\0')
            return name;
        if (name.size() == LongestName)
            break;
        name.append(next);
    }
    return std::nullopt;
}

qint64 NumberAt(const QByteArray& value, int place)
{
    return qFromLittleEndian<qint32>(value.mid(place * int(sizeof(qint32))).constData());
}

/// @return an empty size when the sides do not fit.
QSize SizeOfWindow(const QByteArray& value)
{
    const qint64 width = NumberAt(value, 2) - NumberAt(value, 0) + 1;
    const qint64 height = NumberAt(value, 3) - NumberAt(value, 1) + 1;
    constexpr qint64 Largest = std::numeric_limits<int>::max();
    if (width < 1 || height < 1)
        return {};
    return {int(std::min(width, Largest)), int(std::min(height, Largest))};
}

int CountChannels(const QByteArray& value)
{
    int count = 0;
    for (int at = 0; at < value.size() && value.at(at) != '\0'; ++count) {
        const int end = value.indexOf('\0', at);
        if (end < 0)
            break;
        at = end + 1 + ChannelTail;
    }
    return count;
}

void TakeAttribute(ExrHeader& header, const QByteArray& name, const QByteArray& value)
{
    constexpr int WindowBytes = 4 * int(sizeof(qint32));
    constexpr int TileBytes = 2 * int(sizeof(qint32));
    if (name == "dataWindow" && value.size() == WindowBytes)
        header.size = SizeOfWindow(value);
    else if (name == "channels")
        header.channels = CountChannels(value);
    else if (name == "tiles" && value.size() > TileBytes)
        header.tile = QSize(int(NumberAt(value, 0)), int(NumberAt(value, 1)));
}

} // namespace

std::optional<ExrHeader> ExrHeader::Read(QIODevice& device)
{
    const auto magic = ReadNumber(device);
    const auto version = ReadNumber(device);
    if (magic != Magic || !version || (*version & DeepFlag) != 0)
        return std::nullopt;
    ExrHeader header;
    for (int count = 0; count < MostAttributes; ++count) {
        const auto name = ReadName(device);
        if (!name)
            break;
        if (name->isEmpty())
            return header.size.isEmpty() || header.channels == 0 ? std::nullopt : std::optional(header);
        const auto type = ReadName(device);
        const auto length = ReadNumber(device);
        if (!type || !length || *length > LongestAttribute)
            break;
        const QByteArray value = device.read(*length);
        if (value.size() != int(*length))
            break;
        TakeAttribute(header, *name, value);
    }
    return std::nullopt;
}

bool ExrHeader::IsTooLarge() const
{
    constexpr int Side = PictureFile::LongestSide;
    if (size.width() > Side || size.height() > Side || tile.width() > Side || tile.height() > Side)
        return true;
    const qint64 bytesPerPixel = qint64(channels) * BytesPerChannel;
    const qint64 block
        = std::max(qint64(size.width()) * LinesPerBlock, qint64(tile.width()) * std::max(tile.height(), 0));
    return qint64(size.width()) * size.height() * BytesPerChannel > PictureFile::MostBytes
        || block * bytesPerPixel > PictureFile::MostBytes;
}
