#pragma once

#include "host/app/host_options.h"
#include "host/app/host_services.h"
#include "host/app/plugin_runner.h"
#include "host/mainform/preview_trigger.h"

#include <QObject>

#include <memory>

class FarmProcess;
class SessionControl;
class VTBaseInterface;

/// The running client: the services, the plugin that shows them and, where no server is configured, the farm.
class ClientHost : public QObject
{
    Q_OBJECT

public:
    explicit ClientHost(const HostOptions& options, QObject* parent = nullptr);

    /// Ends everything in the reverse order of its start.
    ~ClientHost() override;

    /// @param error receives an English sentence where the client cannot start.
    bool Start(QString* error);

    /// Shows the window that the user is looking for, and takes the scenes that came with the wish.
    void ComeForward(const QStringList& scenes);

    HostServices& Services() { return m_services; }

    /// Only after a successful Start.
    SessionControl& Session() { return *m_session; }

private:
    bool StartPlugin(QString* error);
    bool SetAccount(bool embedded, QString* error);
    void UseServer(const QUrl& url);
    void UseNoServer();
    void StartFarm();
    void BeginSession();
    void ShowClient(const QString& userName);

    HostOptions m_options;
    HostServices m_services;
    PreviewTrigger m_preview;
    std::unique_ptr<PluginRunner> m_runner;
    VTBaseInterface* m_client = nullptr; // the plugin's, while the runner runs it
    std::unique_ptr<SessionControl> m_session;
    std::unique_ptr<FarmProcess> m_farm;
    bool m_sessionBegun = false;
};
