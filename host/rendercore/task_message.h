#pragma once

#include "host/farmclient/farm_fault.h"

#include <QJsonValue>
#include <QStringList>
#include <QVector>

#include <stdexcept>

/// A message to the user about a task. It is kept apart from any language: its text is made when it is shown.
class TaskMessage
{
public:
    TaskMessage() = default;

    /// @param sentence in English, marked with QT_TRANSLATE_NOOP("TaskMessage", …); %1 to %9 stand for the arguments.
    TaskMessage(const char* sentence, const QVector<TaskMessage>& arguments = {});

    /// @param words that are never translated, such as a path, a number or the words of another program.
    TaskMessage(const QString& words);

    TaskMessage(const FarmFault& fault);

    /// Why a connection failed, as the end of a sentence.
    static TaskMessage CauseOf(const FarmFault& fault);

    /// @param lines one below the other; empty ones are left out.
    static TaskMessage Lines(const QVector<TaskMessage>& lines);

    bool IsEmpty() const;

    /// @return whether this message, or a part of it, is a fault of this status.
    bool HasFault(int status) const;

    /// @return plain text.
    QString Text() const;
    static QStringList Texts(const QVector<TaskMessage>& messages);

    /// A form for a database. It does not change when translations do.
    QString ToStored() const;

    /// @param stored may be a plain text, as earlier versions stored it. Such a text stays as it is, unless it is a
    /// sentence that can be translated.
    static TaskMessage FromStored(const QString& stored);

    QJsonValue ToJson() const;

    /// Strings become words. Anything that is not a message becomes an empty one.
    static TaskMessage FromJson(const QJsonValue& json);

    friend bool operator==(const TaskMessage& one, const TaskMessage& other)
    {
        return one.m_kind == other.m_kind && one.m_text == other.m_text && one.m_parts == other.m_parts
            && one.m_fault == other.m_fault;
    }

private:
    enum class Kind { Words, Sentence, Lines, Fault, Cause };

    Kind m_kind = Kind::Words;
    QString m_text;               // words, or the English source of a sentence
    QVector<TaskMessage> m_parts; // arguments or lines
    FarmFault m_fault;
};

/// Ends the work on a task.
class TaskFailure : public std::runtime_error
{
public:
    explicit TaskFailure(const TaskMessage& message)
        : std::runtime_error(message.Text().toStdString())
        , m_message(message)
    {
    }

    const TaskMessage& Message() const { return m_message; }

private:
    TaskMessage m_message;
};
