#pragma once

#include <QJsonObject>
#include <QStringList>

/// Reads members of request bodies. Each function throws InvalidInput, whose text names the member, when the member is
/// missing, has another type or is outside its limits.
namespace farm {

/// @param longest is a number of UTF-16 code units.
QString RequiredText(const QJsonObject& body, const char* key, int longest);
int RequiredInteger(const QJsonObject& body, const char* key, int least, int most);
QStringList RequiredTexts(const QJsonObject& body, const char* key, int most);

} // namespace farm
