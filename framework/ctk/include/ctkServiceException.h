#pragma once

#include "ctkException.h"

/// A service could not be handed out.
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
