#pragma once

#include "host/app/connection_view.h"
#include "host/app/host_options.h"
#include "host/app/host_services.h"
#include "host/app/plugin_runner.h"
#include "host/frames/frames_window.h"
#include "host/mainform/cell_tips.h"
#include "host/mainform/filter_bar.h"
#include "host/mainform/filter_menu.h"
#include "host/mainform/form_closing.h"
#include "host/mainform/form_follower.h"
#include "host/mainform/job_trigger.h"
#include "host/mainform/list_hints.h"
#include "host/mainform/preview_trigger.h"
#include "host/mainform/project_picker.h"
#include "host/mainform/shortcuts.h"
#include "host/mainform/task_status.h"
#include "host/mainform/transfer_buttons.h"

#include <QObject>

#include <memory>

class FarmProcess;
class LiveRefresh;
class ProjectGroups;
class SessionControl;
class SpaceControl;
class SpaceOffer;
class VTBaseInterface;

/// The running client: the services, the plugin that uses them and, if no server is configured, the embedded farm.
class ClientHost : public QObject
{
    Q_OBJECT

public:
    explicit ClientHost(const HostOptions& options, QObject* parent = nullptr);

    /// Stops session, plugin and farm in the reverse order of their start.
    ~ClientHost() override;

    /// @param error receives an English sentence when the client cannot start.
    bool Start(QString* error);

    /// Shows the main window, or the sign-in window while nobody is signed in, and submits the scenes.
    void Activate(const QStringList& scenes, int priority = 0);

    HostServices& Services() { return m_services; }

    /// Only after a successful Start.
    SessionControl& Session() { return *m_session; }

private:
    void ConnectForm();
    bool StartPlugin(QString* error);
    bool ChooseServer(QString* error);
    void ConnectSession();
    bool SetAccount(bool embedded, QString* error);
    void UseServer(const QUrl& url);
    void UseNoServer();
    void StartFarm();
    void HandleLostFarm(const QString& reason);
    void TryAgain();
    void Refresh();
    QString ServerText() const;
    void BeginSession();
    void ShowClient(const QString& userName, const QString& token);

    HostOptions m_options;
    HostServices m_services;
    PreviewTrigger m_preview;
    JobTrigger m_jobs;
    FramesWindow m_frames;
    FormFollower m_follower;
    FormClosing m_closing;
    Shortcuts m_shortcuts;
    ConnectionView m_connection;
    CellTips m_tips;
    FilterBar m_filter;
    ListHints m_hints;
    TransferButtons m_transfers;
    TaskStatus m_taskStatus;
    ProjectPicker m_picker;
    FilterMenu m_filterMenu;
    std::unique_ptr<PluginRunner> m_runner;
    VTBaseInterface* m_client = nullptr; // owned by the plugin; valid until m_runner stops it
    std::unique_ptr<SessionControl> m_session;
    std::unique_ptr<LiveRefresh> m_refresh;
    std::unique_ptr<ProjectGroups> m_projects;
    std::unique_ptr<SpaceControl> m_space;
    std::unique_ptr<SpaceOffer> m_spaceOffer;
    std::unique_ptr<FarmProcess> m_farm;
    bool m_sessionBegun = false;
};
