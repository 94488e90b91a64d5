#pragma once

#include "vtr_baseinterface.h"

#include <QObject>

/// The previewer of finished frames. It has no operations of its own.
class VTPreviewerInterface : public QObject, public VTBaseInterface
{
    Q_OBJECT
    Q_INTERFACES(VTBaseInterface)

public:
    using QObject::QObject;
};

Q_DECLARE_INTERFACE(VTPreviewerInterface, "com.vtr.previewer")
