#pragma once

#include "host/farmclient/connection_feed.h"
#include "host/mainform/notice_board.h"
#include "host/mainform/scene_intake.h"
#include "host/services/communication_service.h"
#include "host/services/configuration_service.h"
#include "host/services/logger_service.h"
#include "host/services/message_box_service.h"
#include "host/services/previewer_service.h"
#include "host/services/qt_message_route.h"
#include "host/services/render_core_service.h"
#include "host/services/settings_service.h"
#include "host/services/ui_loader_service.h"
#include "host/ui/configuration_dialog.h"

struct HostOptions;
class PluginRunner;

/// All services that the plugin asks for. Each member is built after the ones it depends on.
struct HostServices
{
    explicit HostServices(const HostOptions& options);

    /// Registers each service under the name of its interface. The services must outlive the runner.
    void RegisterWith(PluginRunner& runner);

    ConnectionFeed feed; // the transports' threads report to it until they end
    LoggerService logger;
    QtMessageRoute messages;
    SettingsService settings;
    UiLoaderService loader;
    MessageBoxService messageBox;
    CommunicationService communication;
    RenderCoreService renderCore;
    SceneIntake scenes;
    NoticeBoard notices;
    ConfigurationDialog configurationDialog;
    ConfigurationService configuration;
    PreviewerService previewer;
};
