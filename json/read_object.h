#pragma once

#include <QByteArray>
#include <QJsonObject>

/// A JSON object from outside, or the fault of its text.
struct JsonRead
{
    QJsonObject object;
    const char* fault = nullptr; ///< completes "the body …"; null when the object has been read
};

/// Reads a text from outside. An object with a duplicate key is refused: Qt 5.15 never frees the first value if it is
/// an object or a list, so repeated requests would use up all memory.
JsonRead ReadJsonObject(const QByteArray& text);
