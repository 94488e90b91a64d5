#include "qjson/serializer.h"

#include <algorithm>
#include <cmath>
#include <QByteArrayList>
#include <QIODevice>
#include <QJsonArray>
#include <QJsonDocument>

namespace {

QByteArray ToJson(const QVariant& value, bool& ok);

/// Writes a text, number, boolean or null. Qt writes these only as elements of an array, so the brackets are cut off.
QByteArray ScalarToJson(const QJsonValue& value)
{
    return QJsonDocument(QJsonArray {value}).toJson(QJsonDocument::Compact).chopped(1).mid(1);
}

QByteArray ListToJson(const QVariantList& list, bool& ok)
{
    QByteArrayList items;
    for (const QVariant& item : list)
        items.append(ToJson(item, ok));
    return '[' + items.join(',') + ']';
}

template <typename Container>
QByteArray MembersToJson(const Container& container, bool& ok)
{
    QByteArrayList members;
    for (auto it = container.cbegin(); it != container.cend(); ++it)
        members.append(ScalarToJson(it.key()) + ':' + ToJson(it.value(), ok));
    // A hash has no fixed order, and the text must not change from run to run.
    std::sort(members.begin(), members.end());
    return '{' + members.join(',') + '}';
}

QByteArray ToJson(const QVariant& value, bool& ok)
{
    switch (value.userType()) {
    case QMetaType::UnknownType:
        return QByteArrayLiteral("null");
    case QMetaType::QVariantMap:
        return MembersToJson(value.toMap(), ok);
    case QMetaType::QVariantHash:
        return MembersToJson(value.toHash(), ok);
    case QMetaType::QVariantList:
    case QMetaType::QStringList:
        return ListToJson(value.toList(), ok);
    case QMetaType::Bool:
        return ScalarToJson(value.toBool());
    // Qt's writer turns integers into doubles, which are not exact beyond 2^53.
    case QMetaType::Int:
    case QMetaType::LongLong:
        return QByteArray::number(value.toLongLong());
    case QMetaType::UInt:
    case QMetaType::ULongLong:
        return QByteArray::number(value.toULongLong());
    case QMetaType::Float:
    case QMetaType::Double:
        ok = ok && std::isfinite(value.toDouble());
        return ScalarToJson(value.toDouble());
    default:
        ok = ok && value.canConvert<QString>();
        return ScalarToJson(value.toString());
    }
}

} // namespace

namespace QJson {

QByteArray Serializer::serialize(const QVariant& value)
{
    return serialize(value, nullptr);
}

QByteArray Serializer::serialize(const QVariant& value, bool* ok)
{
    bool written = true;
    const QByteArray text = ToJson(value, written);
    if (ok)
        *ok = written;
    return written ? text : QByteArray();
}

void Serializer::serialize(const QVariant& value, QIODevice* device, bool* ok)
{
    bool written = false;
    const QByteArray text = serialize(value, &written);
    written = written && device && device->isWritable() && device->write(text) == text.size();
    if (ok)
        *ok = written;
}

} // namespace QJson
