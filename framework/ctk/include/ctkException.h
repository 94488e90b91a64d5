#pragma once

#include "ctkPluginFrameworkExport.h"

#include <exception>
#include <QByteArray>
#include <QString>

/// Base class of all exceptions of the framework.
class CTK_PLUGINFW_EXPORT ctkException : public std::exception
{
public:
    explicit ctkException(const QString& message)
        : m_message(message.toUtf8())
    {
    }

    /// The message in UTF-8, owned by the exception.
    const char* what() const noexcept override { return m_message.constData(); }

private:
    QByteArray m_message;
};

class CTK_PLUGINFW_EXPORT ctkRuntimeException : public ctkException
{
public:
    using ctkException::ctkException;
};

class CTK_PLUGINFW_EXPORT ctkInvalidArgumentException : public ctkRuntimeException
{
public:
    using ctkRuntimeException::ctkRuntimeException;
};

class CTK_PLUGINFW_EXPORT ctkIllegalStateException : public ctkRuntimeException
{
public:
    using ctkRuntimeException::ctkRuntimeException;
};
