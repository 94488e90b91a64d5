#include "mainwindow/vtr_requests.h"

#include "common/vtr_protocol.h"
#include "common/vtr_services.h"
#include "mainwindow/vtr_session.h"

QVariantHash VTRequests::New() const
{
    return VTProtocol::SessionRequest(m_session.strUserName, m_session.strToken);
}

void VTRequests::Send(Operation operation, const QVariantHash& mapRequest) const
{
    if (VTCommunicationInterface* pCommunication = m_services.pCommunication)
        (pCommunication->*operation)(QVariant(m_services.nCommunicationStatus), mapRequest);
}
