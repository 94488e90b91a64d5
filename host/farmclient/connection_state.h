#pragma once

#include "host/farmclient/farm_fault.h"

#include <QByteArray>
#include <QDateTime>
#include <QVector>

/// The end of one request to the farm, successful or not.
struct Exchange
{
    QDateTime time;
    QByteArray verb;      ///< empty for a fault without a request
    QByteArray target;    ///< path and query, as in HttpRequest
    FarmFault fault = {}; ///< none if the request succeeded

    /// @return the target without its query.
    QByteArray Path() const { return target.mid(0, target.indexOf('?')); }
};

/// The state of the connection as the exchanges so far show it: its phase, the age of the list of jobs, and the
/// latest failures. It reads no clock.
class ConnectionState
{
public:
    enum class Phase { Connected, TryingAgain, Unreachable };

    static constexpr int GraceTime = 5000;    ///< ms of failures until the farm counts as unreachable
    static constexpr int RecentTime = 120000; ///< ms for which a refusal counts as news
    static constexpr int MostEntries = 20;

    /// A failure, and the number of times that it has occurred in a row.
    struct Entry
    {
        Exchange latest;
        int count = 1;
    };

    void Apply(const Exchange& exchange);

    /// Records that the latest list of jobs was still up to date at this time.
    void ConfirmList(const QDateTime& time);

    Phase PhaseAt(const QDateTime& now) const;

    /// @return when the first request failed since the farm was reached last; invalid while it is reached.
    QDateTime FailingSince() const { return m_failingSince; }

    /// @return when the list of jobs arrived or was confirmed last; invalid while it has not arrived.
    QDateTime ListTime() const { return m_listTime; }

    /// @return the latest refusal of a farm that can be reached, while it is news; null for none.
    const Entry* News(const QDateTime& now) const;

    /// Records that the user has read the entries, so that none of them is news any longer.
    void MarkRead() { m_isRead = true; }

    /// @return when the phase or the news change without another exchange; invalid for never.
    QDateTime NextChange(const QDateTime& now) const;

    /// The failures, latest first.
    const QVector<Entry>& Entries() const { return m_entries; }

private:
    void Remember(const Exchange& exchange, bool isOutage);

    QDateTime m_failingSince;
    QDateTime m_listTime;
    QVector<Entry> m_entries;
    bool m_isRead = true;
};
