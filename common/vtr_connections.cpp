#include "common/vtr_connections.h"

#include <QMetaObject>
#include <QtDebug>

namespace {

bool HasMethod(const QObject* pObject, const char* szMethod)
{
    // SIGNAL() and SLOT() put one character before the signature.
    const QByteArray strSignature = QMetaObject::normalizedSignature(szMethod + 1);
    return pObject->metaObject()->indexOfMethod(strSignature.constData()) >= 0;
}

void ConnectOnce(const VTConnection& connection)
{
    const auto& [pSender, szSignal, pReceiver, szSlot] = connection;
    const bool bBoth = pSender && pReceiver;
    if (bBoth && QObject::connect(pSender, szSignal, pReceiver, szSlot, Qt::UniqueConnection))
        return;
    // connect() also fails for a unique connection that exists already, which is not an error.
    if (bBoth && HasMethod(pSender, szSignal) && HasMethod(pReceiver, szSlot))
        return;
    qCritical("Signal %s of %s cannot be connected to %s of %s", szSignal + 1,
        pSender ? pSender->metaObject()->className() : "no object", szSlot + 1,
        pReceiver ? pReceiver->metaObject()->className() : "no object");
}

} // namespace

void VTConnect(std::initializer_list<VTConnection> lstConnection)
{
    for (const VTConnection& connection : lstConnection)
        ConnectOnce(connection);
}
