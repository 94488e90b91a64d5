#pragma once

#include "framework/ctk/service_registry.h"

#include <QList>
#include <QSharedPointer>

class LibraryPlugin;

/// The state that a framework shares with its plugins.
class FrameworkCore
{
public:
    bool running = false;
    ServiceRegistry services;
    QList<QSharedPointer<LibraryPlugin>> plugins;
    /// Active plugins in the order in which they were started.
    QList<LibraryPlugin*> started;
};
