#pragma once

#include <QByteArray>

#include <cstdint>
#include <optional>
#include <string>

namespace farm {

/// A part of a file, in bytes.
struct ByteRange
{
    std::int64_t offset = 0;
    std::int64_t length = 0;
};

/// The range that a Range header asks for, as far as the file reaches; nothing when it cannot be read, asks for several
/// or asks for none of the file's `size` bytes.
std::optional<ByteRange> ParseRange(const QByteArray& header, std::int64_t size);

/// What a Content-Range header says of it.
std::string ContentRange(const ByteRange& range, std::int64_t size);

/// Whether an If-Match header names this entity tag.
bool NamesTag(const QByteArray& header, const QByteArray& tag);

} // namespace farm
