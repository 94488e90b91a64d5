#pragma once

#include <QHash>
#include <QString>
#include <QVariantList>
#include <QVariantMap>

/// Repeats the window's automatic orders. The window gives each only once a session, but a job that has been finished may be
/// rendered again or in full, and be finished again.
class AutomaticOrders
{
public:
    /// Forgets all orders and jobs, when the session ends.
    void Clear();

    /// Remembers the automatic ones among the window's orders.
    void Remember(const QVariantMap& orders);

    /// @param jobs the records of a job list.
    /// @return the remembered orders of those jobs that are finished again since they were last listed.
    QVariantMap Repeat(const QVariantList& jobs);

private:
    QVariantMap m_orders;             // automatic orders, by job
    QHash<QString, QString> m_states; // states when last listed, by job
};
