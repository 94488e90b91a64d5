#pragma once

#include <QByteArray>

#include <optional>

/// Decompresses a complete gzip or zlib stream.
/// @param most is the limit of the result in bytes; a longer result is cut off somewhere beyond it, so that a small
/// answer cannot fill the memory.
/// @return none when the stream is damaged or incomplete.
std::optional<QByteArray> Decompress(const QByteArray& bytes, qint64 most);
