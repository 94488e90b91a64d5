#pragma once

#include "framework/ctk/library_plugin.h"
#include "framework/ctk/service_registry.h"

/// What a framework and its plugins share.
class FrameworkCore
{
public:
    bool running = false;
    ServiceRegistry services;
    QList<QSharedPointer<LibraryPlugin>> plugins;
    /// In the order of their starts.
    QList<LibraryPlugin*> started;
};
