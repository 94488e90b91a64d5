#pragma once

#include <QJsonObject>

/// Members of request bodies. Each throws BadInput, which names the member, when it is missing or not as it should be.
namespace farm {

QString RequiredText(const QJsonObject& body, const char* key, int longest);
int RequiredInteger(const QJsonObject& body, const char* key, int least, int most);
QStringList RequiredTexts(const QJsonObject& body, const char* key, int most);

} // namespace farm
