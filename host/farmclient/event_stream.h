#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QJsonArray>
#include <QJsonObject>
#include <QStringList>

/// Reads server-sent events from the pieces in which they arrive. Only the data of events are kept; their types, ids and
/// retry times are ignored.
class EventStream
{
public:
    /// The most bytes that a line, or the data of an event, may have.
    static constexpr int Longest = 64 * 1024;

    /// @return the data of the events that these bytes complete.
    QByteArrayList Read(const QByteArray& bytes);

    /// @return whether a line or an event was too long, which ends the reading.
    bool IsTooLong() const { return m_isTooLong; }

private:
    void ReadLine(QByteArrayList& events);

    QByteArray m_line;
    QByteArray m_data;
    bool m_hasData = false;
    bool m_endsWithReturn = false; // a newline that follows belongs to the same end of line
    bool m_isTooLong = false;
};

/// Changes that the farm has announced.
struct FarmChanges
{
    QStringList jobs;         ///< ids of jobs that have changed
    bool list = false;        ///< any list of jobs may have changed
    bool money = false;       ///< the balance has changed
    QJsonObject account = {}; ///< the account with its balance; empty when the farm has to be asked for it
    QJsonArray records = {};  ///< records of all changed jobs; empty when the farm has to be asked for them

    /// Says that anything may have changed, as after a time without a stream.
    static FarmChanges Anything() { return {{}, true, true}; }

    /// @param event is the data of an event. Unreadable data announces nothing.
    static FarmChanges Read(const QByteArray& event);
};
