#pragma once

#include "vtr_baseinterface.h"

#include <QObject>

/// Another application plugin of the host. It has no operations of its own.
class VTBaseAppInterface : public QObject, public VTBaseInterface
{
    Q_OBJECT
    Q_INTERFACES(VTBaseInterface)

public:
    using QObject::QObject;
};

Q_DECLARE_INTERFACE(VTBaseAppInterface, "com.vtr.app")
