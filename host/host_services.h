#pragma once

#include "communication_service.h"
#include "configuration_dialog.h"
#include "configuration_service.h"
#include "logger_service.h"
#include "message_box_service.h"
#include "previewer_service.h"
#include "qt_message_route.h"
#include "render_core_service.h"
#include "scene_intake.h"
#include "settings_service.h"
#include "ui_loader_service.h"

struct HostOptions;
class PluginRunner;

/// The sibling services of the plugin, built in the order in which they need each other.
struct HostServices
{
    explicit HostServices(const HostOptions& options);

    /// Registers each service under its interface's name. The services must outlive the runner.
    void RegisterWith(PluginRunner& runner);

    LoggerService logger;
    QtMessageRoute messages;
    SettingsService settings;
    UiLoaderService loader;
    MessageBoxService messageBox;
    CommunicationService communication;
    RenderCoreService renderCore;
    SceneIntake scenes;
    ConfigurationDialog configurationDialog;
    ConfigurationService configuration;
    PreviewerService previewer;
};
