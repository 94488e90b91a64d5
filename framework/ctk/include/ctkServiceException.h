#pragma once

#include "ctkException.h"

/// Thrown when a service is not available.
class CTK_PLUGINFW_EXPORT ctkServiceException : public ctkRuntimeException
{
public:
    enum Type { UNSPECIFIED, UNREGISTERED };

    explicit ctkServiceException(const QString& message, Type type = UNSPECIFIED)
        : ctkRuntimeException(message)
        , m_type(type)
    {
    }

    Type getType() const { return m_type; }

private:
    Type m_type;
};
