#pragma once

#include <QVariantHash>

class VTCommunicationInterface;
struct VTSession;
struct VTServices;

/// Makes requests with the session's credentials and sends them to the communication service. Without the service
/// nothing is sent.
class VTRequests
{
public:
    using Operation = int (VTCommunicationInterface::*)(const QVariant&, const QVariantHash&);

    /// Both must outlive this object.
    VTRequests(const VTServices& services, const VTSession& session)
        : m_services(services)
        , m_session(session)
    {
    }

    /// @return a request that holds only the session's "username" and "token".
    QVariantHash New() const;

    void Send(Operation operation, const QVariantHash& mapRequest) const;

private:
    const VTServices& m_services;
    const VTSession& m_session;
};
