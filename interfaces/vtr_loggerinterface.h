#pragma once

#include "vtr_baseinterface.h"

#include <QString>

/// The host's log. The interface has no signals and is not a QObject; its implementation is one.
class VTLoggerInterface : public VTBaseInterface
{
public:
    /// @param nLevel severity; the client's diagnostics are written with 128 (debug).
    /// @param strCategory for example "default".
    /// @param strSource source file, may be empty.
    /// @param nLine source line, -1 when unknown.
    virtual void Write(const QString& strMessage, int nLevel, const QString& strCategory,
        const QString& strSource, int nLine)
        = 0;

protected:
    ~VTLoggerInterface() = default;
};

Q_DECLARE_INTERFACE(VTLoggerInterface, "com.vtr.logger")
