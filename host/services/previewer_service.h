#pragma once

#include "service_base.h"
#include "vtr_previewerinterface.h"

/// The previewer: it is asked for nothing yet beyond its life cycle.
class PreviewerService : public ServiceBase<VTPreviewerInterface>
{
    Q_OBJECT
    Q_INTERFACES(VTPreviewerInterface)

public:
    using ServiceBase::ServiceBase;
};
