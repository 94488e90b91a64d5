#pragma once

#include <QByteArray>
#include <QVariant>

class QIODevice;

namespace QJson {

/// Turns a variant into JSON text, compact and in UTF-8.
///
/// Maps, hashes, lists, string lists, strings, numbers, booleans and whatever converts to a string are written; an
/// invalid variant is null. Anything else, at any depth, and numbers that are not finite fail the whole text.
class Serializer
{
public:
    /// Returns an empty array on failure.
    QByteArray serialize(const QVariant& value);
    /// The same, with the outcome in `ok`, which may be null.
    QByteArray serialize(const QVariant& value, bool* ok);
    /// Writes the text to an open device; a device that does not take all of it is a failure as well.
    void serialize(const QVariant& value, QIODevice* device, bool* ok);
};

} // namespace QJson
