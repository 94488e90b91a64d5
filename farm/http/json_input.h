#pragma once

#include <QJsonObject>
#include <QStringList>

#include <cstdint>

/// Reads members of request bodies and queries. Each function throws InvalidInput, whose text names the member, when
/// the member is missing, has another type or is outside its limits.
namespace farm {

/// @param longest is a number of UTF-16 code units.
QString RequiredText(const QJsonObject& body, const char* key, int longest);
int RequiredInteger(const QJsonObject& body, const char* key, int least, int most);
/// @param text is from a query. An empty one reads as `otherwise`; a number out of range becomes the nearest allowed
/// one.
std::int64_t WholeNumber(
    const QByteArray& text, const char* key, std::int64_t otherwise, std::int64_t least, std::int64_t most);
QStringList RequiredTexts(const QJsonObject& body, const char* key, int most);

} // namespace farm
