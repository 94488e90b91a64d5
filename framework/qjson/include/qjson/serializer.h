#pragma once

#include <QByteArray>
#include <QVariant>

class QIODevice;

namespace QJson {

/// Turns a variant into JSON text, compact and in UTF-8.
///
/// Accepts maps, hashes, lists, string lists, strings, numbers, booleans and anything that converts to a string. An
/// invalid variant becomes null. Any other type, at any depth, and a number that is not finite make the call fail.
class Serializer
{
public:
    /// @return an empty array on failure.
    QByteArray serialize(const QVariant& value);
    /// Sets `ok`, which may be null, to whether the text could be written.
    QByteArray serialize(const QVariant& value, bool* ok);
    /// Writes the text to an open device. A partial write counts as a failure.
    void serialize(const QVariant& value, QIODevice* device, bool* ok);
};

} // namespace QJson
