#include "ctkPluginFramework.h"
#include "ctkPluginFrameworkFactory.h"

#include "ctkException.h"
#include "ctkPluginConstants.h"
#include "framework/ctk/framework_core.h"
#include "framework/ctk/library_plugin.h"

#include <QDebug>

const QString ctkPluginConstants::SERVICE_RANKING = QStringLiteral("service.ranking");

ctkPluginFramework::ctkPluginFramework(const QSharedPointer<FrameworkCore>& core)
    : ctkPlugin(core, {{QStringLiteral("Plugin-SymbolicName"), QStringLiteral("system.plugin")}})
{
}

ctkPluginFramework::~ctkPluginFramework()
{
    ctkPluginFramework::stop();
    // Core and plugins hold shared pointers to each other; this breaks the cycle.
    Core().plugins.clear();
}

void ctkPluginFramework::init()
{
    if (Core().running)
        return;
    Core().running = true;
    SetState(STARTING);
}

void ctkPluginFramework::start(const StartOptions& options)
{
    Q_UNUSED(options)
    init();
    SetState(ACTIVE);
}

void ctkPluginFramework::stop(const StopOptions& options)
{
    Q_UNUSED(options)
    if (!Core().running)
        return;
    Core().running = false;
    SetState(STOPPING);
    QList<LibraryPlugin*>& started = Core().started;
    while (!started.isEmpty()) {
        try {
            started.last()->stop({});
        } catch (const ctkException& exception) {
            qWarning() << exception.what();
        }
    }
    Retire();
}

void ctkPluginFramework::waitForStop(unsigned long timeout)
{
    Q_UNUSED(timeout)
}

ctkPluginFrameworkFactory::ctkPluginFrameworkFactory(const ctkProperties& properties)
    : m_framework(new ctkPluginFramework(QSharedPointer<FrameworkCore>::create()))
{
    Q_UNUSED(properties)
}
