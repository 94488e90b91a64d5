#pragma once

#include "vtr_baseinterface.h"

/// The six life-cycle operations that all services share.
///
/// Show hands out a status that callers pass to the other operations, and to the requests of the communication service.
template <class Interface>
class ServiceBase : public Interface
{
public:
    using Interface::Interface;

    int Initialize(const QVariantMap& parameters) override
    {
        Q_UNUSED(parameters)
        m_initialised = true;
        return StatusOk;
    }

    int Uninitialize() override
    {
        m_initialised = false;
        return StatusOk;
    }

    int Show(QVariant& result, const QVariantMap& parameters) override
    {
        Q_UNUSED(parameters)
        if (!m_initialised)
            return StatusNotInitialised;
        result = HandedOut;
        return StatusOk;
    }

    int Hide(const QVariant& request) override { return CheckRequest(request); }

    int Activate(const QVariant& request, const QVariantMap& parameters) override
    {
        Q_UNUSED(parameters)
        return CheckRequest(request);
    }

    int Close(const QVariant& request) override { return CheckRequest(request); }

protected:
    enum Status { StatusOk = 0, StatusNotInitialised = -3, StatusBadRequest = -4 };

    /// @return StatusOk when the service is initialised and `request` is the status that Show handed out.
    int CheckRequest(const QVariant& request) const
    {
        if (!m_initialised)
            return StatusNotInitialised;
        return request.toInt() == HandedOut ? StatusOk : StatusBadRequest;
    }

private:
    static constexpr int HandedOut = 1;

    bool m_initialised = false;
};
