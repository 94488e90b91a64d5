#pragma once

#include "common/vtr_protocol.h"

#include <QVariantHash>

class VTCommunicationInterface;
struct VTSession;
struct VTServices;

/// Sends requests to the communication service in the session's name. Without the service nothing is sent.
class VTRequests
{
public:
    using Operation = int (VTCommunicationInterface::*)(const QVariant&, const QVariantHash&);

    /// @param siblings, session must outlive this object.
    VTRequests(const VTServices& services, const VTSession& session)
        : m_services(services)
        , m_session(session)
    {
    }

    /// A request with the session's "username" and "token".
    QVariantHash New() const;

    void Send(Operation operation, const QVariantHash& mapRequest) const;

    /// A request that carries nothing but the session.
    void Send(Operation operation) const { Send(operation, New()); }

private:
    const VTServices& m_services;
    const VTSession& m_session;
};
