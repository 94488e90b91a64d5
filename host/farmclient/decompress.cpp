#include "host/farmclient/decompress.h"

#include <array>
#include <memory>
#include <zlib.h>

std::optional<QByteArray> Decompress(const QByteArray& bytes, qint64 most)
{
    constexpr int EitherFormat = 32 + MAX_WBITS; // zlib tells gzip from zlib by the first bytes
    z_stream stream {};
    if (inflateInit2(&stream, EitherFormat) != Z_OK)
        return std::nullopt;
    const std::unique_ptr<z_stream, int (*)(z_stream*)> end(&stream, inflateEnd);
    // The interface of zlib predates const; it only reads the input.
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.constData()));
    stream.avail_in = static_cast<uInt>(bytes.size());
    std::array<char, 64 * 1024> block;
    QByteArray result;
    int state = Z_OK;
    while (state == Z_OK && result.size() <= most) {
        stream.next_out = reinterpret_cast<Bytef*>(block.data());
        stream.avail_out = static_cast<uInt>(block.size());
        state = inflate(&stream, Z_NO_FLUSH);
        result.append(block.data(), static_cast<int>(block.size() - stream.avail_out));
    }
    if (state == Z_STREAM_END || result.size() > most)
        return result;
    return std::nullopt;
}
