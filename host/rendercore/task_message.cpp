#include "host/rendercore/task_message.h"

#include "host/farmclient/sentences.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace {

// A sentence is stored as an array of its source and its arguments, words as a string, the rest as objects.
const QString LinesKey = QStringLiteral("lines");
const QString FaultKey = QStringLiteral("fault");
const QString CauseKey = QStringLiteral("cause");

QJsonArray ArrayOf(const QVector<TaskMessage>& messages)
{
    QJsonArray array;
    for (const TaskMessage& message : messages)
        array.append(message.ToJson());
    return array;
}

QVector<TaskMessage> MessagesOf(const QJsonArray& array)
{
    QVector<TaskMessage> messages;
    for (const QJsonValue& value : array)
        messages.append(TaskMessage::FromJson(value));
    return messages;
}

QJsonArray FaultToJson(const FarmFault& fault)
{
    return {fault.status, fault.cause, fault.words};
}

FarmFault FaultFromJson(const QJsonValue& json)
{
    return {json[0].toInt(), json[1].toInt(), json[2].toString()};
}

/// Unlike chained calls of QString::arg(), it leaves a "%2" within an argument alone.
QString Filled(const QString& sentence, const QStringList& arguments)
{
    QString text;
    for (int index = 0; index < sentence.size(); ++index) {
        const bool isMark = sentence.at(index) == QLatin1Char('%') && index + 1 < sentence.size();
        const int number = isMark ? sentence.at(index + 1).digitValue() : 0;
        if (number < 1 || number > arguments.size()) {
            text += sentence.at(index);
        } else {
            text += arguments.at(number - 1);
            ++index;
        }
    }
    return text;
}

} // namespace

TaskMessage::TaskMessage(const char* sentence, const QVector<TaskMessage>& arguments)
    : m_kind(Kind::Sentence)
    , m_text(QString::fromUtf8(sentence))
    , m_parts(arguments)
{
}

TaskMessage::TaskMessage(const QString& words)
    : m_text(words)
{
}

TaskMessage::TaskMessage(const FarmFault& fault)
    : m_kind(Kind::Fault)
    , m_fault(fault)
{
}

TaskMessage TaskMessage::CauseOf(const FarmFault& fault)
{
    TaskMessage message(fault);
    message.m_kind = Kind::Cause;
    return message;
}

TaskMessage TaskMessage::Lines(const QVector<TaskMessage>& lines)
{
    TaskMessage message;
    message.m_kind = Kind::Lines;
    for (const TaskMessage& line : lines) {
        if (!line.IsEmpty())
            message.m_parts.append(line);
    }
    return message;
}

bool TaskMessage::HasFault(int status) const
{
    return (m_kind == Kind::Fault && m_fault.status == status)
        || std::any_of(m_parts.cbegin(), m_parts.cend(),
            [status](const TaskMessage& part) { return part.HasFault(status); });
}

bool TaskMessage::IsEmpty() const
{
    switch (m_kind) {
    case Kind::Lines:
        return m_parts.isEmpty();
    case Kind::Fault:
    case Kind::Cause:
        return m_fault == FarmFault();
    default:
        return m_text.isEmpty();
    }
}

QString TaskMessage::Text() const
{
    switch (m_kind) {
    case Kind::Sentence:
        return Filled(
            QCoreApplication::translate("TaskMessage", m_text.toUtf8().constData()), Texts(m_parts));
    case Kind::Lines:
        return Texts(m_parts).join(QLatin1Char('\n'));
    case Kind::Fault:
        return m_fault.Text();
    case Kind::Cause:
        return Sentence(m_fault.Cause());
    default:
        return m_text;
    }
}

QStringList TaskMessage::Texts(const QVector<TaskMessage>& messages)
{
    QStringList texts;
    for (const TaskMessage& message : messages)
        texts.append(message.Text());
    return texts;
}

QString TaskMessage::ToStored() const
{
    if (IsEmpty())
        return {};
    const QJsonValue json = m_kind == Kind::Words ? Lines({*this}).ToJson() : ToJson();
    const QJsonDocument document
        = json.isArray() ? QJsonDocument(json.toArray()) : QJsonDocument(json.toObject());
    return QString::fromUtf8(document.toJson(QJsonDocument::Compact));
}

TaskMessage TaskMessage::FromStored(const QString& stored)
{
    if (stored.isEmpty())
        return {};
    const QByteArray text = stored.toUtf8();
    const QJsonDocument document = QJsonDocument::fromJson(text);
    const TaskMessage message
        = FromJson(document.isArray() ? QJsonValue(document.array()) : QJsonValue(document.object()));
    return message.IsEmpty() ? TaskMessage(text.constData()) : message;
}

QJsonValue TaskMessage::ToJson() const
{
    switch (m_kind) {
    case Kind::Sentence: {
        QJsonArray sentence = ArrayOf(m_parts);
        sentence.prepend(m_text);
        return sentence;
    }
    case Kind::Lines:
        return QJsonObject {{LinesKey, ArrayOf(m_parts)}};
    case Kind::Fault:
        return QJsonObject {{FaultKey, FaultToJson(m_fault)}};
    case Kind::Cause:
        return QJsonObject {{CauseKey, FaultToJson(m_fault)}};
    default:
        return m_text;
    }
}

TaskMessage TaskMessage::FromJson(const QJsonValue& json)
{
    if (json.isString())
        return json.toString();
    if (json.isArray()) {
        QJsonArray parts = json.toArray();
        const QByteArray source = parts.isEmpty() ? QByteArray() : parts.takeAt(0).toString().toUtf8();
        return source.isEmpty() ? TaskMessage() : TaskMessage(source.constData(), MessagesOf(parts));
    }
    const QJsonObject object = json.toObject();
    if (object.contains(FaultKey))
        return FaultFromJson(object.value(FaultKey));
    if (object.contains(CauseKey))
        return CauseOf(FaultFromJson(object.value(CauseKey)));
    return Lines(MessagesOf(object.value(LinesKey).toArray()));
}
