#pragma once

#include "common/vtr_protocol.h"

#include <QVariantHash>

class VTCommunicationInterface;
struct VTSession;
struct VTSiblings;

/// Sends requests to the communication service in the session's name. Without the service nothing is sent.
class VTRequests
{
public:
    using Operation = int (VTCommunicationInterface::*)(const QVariant&, const QVariantHash&);

    /// @param siblings, session must outlive this object.
    VTRequests(const VTSiblings& siblings, const VTSession& session)
        : m_siblings(siblings)
        , m_session(session)
    {
    }

    /// A request with the session's "username" and "token".
    QVariantHash New() const;

    void Send(Operation operation, const QVariantHash& mapRequest) const;

    /// A request that carries nothing but the session.
    void Send(Operation operation) const { Send(operation, New()); }

private:
    const VTSiblings& m_siblings;
    const VTSession& m_session;
};
