#pragma once

#include "ctkPluginContext.h"

#include <memory>
#include <QFlags>
#include <QHash>

/// A plugin, which is installed once and then started and stopped as often as needed.
class CTK_PLUGINFW_EXPORT ctkPlugin
{
public:
    enum State {
        UNINSTALLED = 0x01,
        INSTALLED = 0x02,
        RESOLVED = 0x04,
        STARTING = 0x08,
        STOPPING = 0x10,
        ACTIVE = 0x20
    };
    enum StartOption { START_TRANSIENT = 0x01, START_ACTIVATION_POLICY = 0x02 };
    enum StopOption { STOP_TRANSIENT = 0x01 };
    Q_DECLARE_FLAGS(StartOptions, StartOption)
    Q_DECLARE_FLAGS(StopOptions, StopOption)

    virtual ~ctkPlugin();

    /// Runs the activator at once, whatever the options; does nothing when the plugin is active. Throws
    /// `ctkPluginException` when the framework is not running, the library has no activator, the activator throws (its
    /// services are withdrawn then), or the plugin is starting or stopping at the moment.
    virtual void start(const StartOptions& options = StartOptions()) = 0;

    /// Stops an active plugin and withdraws its services; does nothing when the plugin is not active. Throws
    /// `ctkPluginException` when the activator throws (the plugin is stopped all the same), or when the plugin is
    /// starting or stopping at the moment.
    virtual void stop(const StopOptions& options = StopOptions()) = 0;

    State getState() const { return m_state; }

    /// The plugin owns its context. Null unless the plugin is starting, active or stopping.
    ctkPluginContext* getPluginContext() const;

    QString getSymbolicName() const;

    /// The headers of the manifest by name.
    QHash<QString, QString> getHeaders() const { return m_headers; }

protected:
    ctkPlugin(const QSharedPointer<FrameworkCore>& core, const QHash<QString, QString>& headers);
    Q_DISABLE_COPY(ctkPlugin)

    FrameworkCore& Core() const { return *m_core; }
    void SetState(State state) { m_state = state; }

    /// Withdraws the plugin's services, ends its use of others' services and invalidates its context.
    void Retire();

private:
    friend class ctkPluginContext;

    const QSharedPointer<FrameworkCore> m_core;
    const QHash<QString, QString> m_headers;
    const std::unique_ptr<ctkPluginContext> m_context;
    State m_state = INSTALLED;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(ctkPlugin::StartOptions)
Q_DECLARE_OPERATORS_FOR_FLAGS(ctkPlugin::StopOptions)
