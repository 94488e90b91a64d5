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

/// The range that a Range header asks for, limited to the file's `size` bytes. Nothing when the header cannot be read,
/// asks for several ranges or for none of the file's bytes.
std::optional<ByteRange> ParseRange(const QByteArray& header, std::int64_t size);

/// The value of the Content-Range header of an answer with this range.
std::string ContentRange(const ByteRange& range, std::int64_t size);

/// Whether an If-Match header names this entity tag.
bool NamesTag(const QByteArray& header, const QByteArray& tag);

} // namespace farm
