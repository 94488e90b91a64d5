#include "host/rendercore/download/automatic_orders.h"

#include "common/vtr_codetables.h"

namespace {

/// The cost shows whether a job was rendered again between two lists.
QString FinishOf(const QVariantMap& job)
{
    return job.value(QStringLiteral("job_status")).toInt() == VTCodeTables::JobFinished
        ? QString(QLatin1String("finished at ") + job.value(QStringLiteral("job_cost")).toString())
        : QString();
}

} // namespace

void AutomaticOrders::Clear()
{
    m_orders.clear();
    m_states.clear();
}

void AutomaticOrders::Remember(const QVariantMap& orders)
{
    for (auto order = orders.cbegin(); order != orders.cend(); ++order) {
        if (order->toMap().value(QStringLiteral("manual")).toInt() == 0)
            m_orders.insert(order.key(), *order);
    }
}

QVariantMap AutomaticOrders::Repeat(const QVariantList& jobs)
{
    QVariantMap repeated;
    if (m_orders.isEmpty())
        return repeated;
    for (const QVariant& entry : jobs) {
        const QVariantMap job = entry.toMap();
        const QString id = job.value(QStringLiteral("job_id")).toString();
        const QString state = FinishOf(job);
        const auto known = m_states.constFind(id);
        const bool isNew = known != m_states.cend() && *known != state && !state.isEmpty();
        m_states.insert(id, state);
        if (isNew && m_orders.contains(id))
            repeated.insert(id, m_orders.value(id));
    }
    return repeated;
}
