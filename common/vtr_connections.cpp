#include "common/vtr_connections.h"

#include <QtDebug>

void VTConnections::Add(std::initializer_list<VTConnection> lstConnection)
{
    for (const auto& [pSender, szSignal, pReceiver, szSlot] : lstConnection) {
        if (pSender && pReceiver)
            m_lstConnection.append(QObject::connect(pSender, szSignal, pReceiver, szSlot));
        if (!pSender || !pReceiver || !m_lstConnection.last())
            qCritical("Signal %s of %s cannot be connected to %s of %s", szSignal + 1,
                pSender ? pSender->metaObject()->className() : "no object", szSlot + 1,
                pReceiver ? pReceiver->metaObject()->className() : "no object");
    }
}

void VTConnections::Clear()
{
    for (const QMetaObject::Connection& connection : qAsConst(m_lstConnection))
        QObject::disconnect(connection);
    m_lstConnection.clear();
}
