#pragma once

#include "ctkException.h"

/// Thrown when a plugin cannot be installed, started or stopped.
class CTK_PLUGINFW_EXPORT ctkPluginException : public ctkRuntimeException
{
public:
    enum Type {
        UNSPECIFIED,
        UNSUPPORTED_OPERATION,
        INVALID_OPERATION,
        MANIFEST_ERROR,
        ACTIVATOR_ERROR,
        STATECHANGE_ERROR,
        DUPLICATE_PLUGIN_ERROR,
        READ_ERROR
    };

    explicit ctkPluginException(const QString& message, Type type = UNSPECIFIED)
        : ctkRuntimeException(message)
        , m_type(type)
    {
    }

    Type getType() const { return m_type; }

private:
    Type m_type;
};
