#include "ctkPlugin.h"

#include "framework/ctk/framework_core.h"
#include "framework/ctk/plugin_manifest.h"

ctkPlugin::ctkPlugin(const QSharedPointer<FrameworkCore>& core, const QHash<QString, QString>& headers)
    : m_core(core)
    , m_headers(headers)
    , m_context(new ctkPluginContext(*this))
{
}

ctkPlugin::~ctkPlugin() = default;

ctkPluginContext* ctkPlugin::getPluginContext() const
{
    return m_state & (STARTING | ACTIVE | STOPPING) ? m_context.get() : nullptr;
}

QString ctkPlugin::getSymbolicName() const
{
    return SymbolicName(m_headers);
}

void ctkPlugin::Retire()
{
    m_core->services.Release(this);
    m_state = RESOLVED;
}
