#include "host/app/host_services.h"

#include "host/app/host_options.h"
#include "host/app/plugin_runner.h"
#include "host/settings/setting_keys.h"

namespace {

LogOptions LogOptionsOf(const HostOptions& options)
{
    LogOptions log;
    log.file = options.dataFolder + QLatin1String("/logs/quillstar.log");
    log.level = options.logLevel;
    return log;
}

/// Stores the choices of the command line, which are remembered like those made in the client.
VTSettingsInterface* WithChoices(SettingsService& settings, const HostOptions& options)
{
    if (!options.skin.isEmpty())
        settings.SetValue(SettingKeys::Skin, options.skin);
    if (!options.language.isEmpty())
        settings.SetValue(SettingKeys::Language, QStringLiteral("vtr_%1.qm").arg(options.language));
    if (!options.downloadFolder.isEmpty())
        settings.SetValue(SettingKeys::DownloadFolder, options.downloadFolder);
    return &settings;
}

} // namespace

HostServices::HostServices(const HostOptions& options)
    : logger(LogOptionsOf(options))
    , messages(&logger)
    , settings(options.configFile)
    , loader(WithChoices(settings, options))
    , messageBox(&loader)
    , renderCore(options.dataFolder + QLatin1String("/transfer"), &settings)
    , scenes(
          RenderCoreService::SceneSuffixes(),
          [this](const QString& scene, int priority) { return renderCore.SubmitScene(scene, priority); },
          &messageBox, &loader)
    , notices(&messageBox, &loader)
    , configurationDialog(&loader, &settings, nullptr)
    , configuration(&configurationDialog)
    , previewer(&loader)
{
    communication.SetFeed(&feed);
    renderCore.SetFeed(&feed);
    renderCore.SetFormFilter(&scenes);
    QObject::connect(&communication, &CommunicationService::JobListResponse, &renderCore,
        &RenderCoreService::HandleJobList);
    QObject::connect(
        &loader, &UiLoaderService::LanguageChanged, &renderCore, &RenderCoreService::Retranslate);
    QObject::connect(&renderCore, &RenderCoreService::Notice, &notices, &NoticeBoard::Show);
    QObject::connect(&configurationDialog, &ConfigurationDialog::ClearFinishedRequested, &renderCore,
        &RenderCoreService::ClearFinishedDownloads);
    QObject::connect(&renderCore, &RenderCoreService::SceneRefused, &scenes, &SceneIntake::ShowRefusal);
}

void HostServices::RegisterWith(PluginRunner& runner)
{
    runner.Register("VTSettingsInterface", &settings);
    runner.Register("VTLoggerInterface", &logger);
    runner.Register("VTUiLoaderInterface", &loader);
    runner.Register("VTMessagboxInterface", &messageBox);
    runner.Register("VTCommunicationInterface", &communication);
    runner.Register("VTRenderCoreInterface", &renderCore);
    runner.Register("VTConfigurationInterface", &configuration);
    runner.Register("VTPreviewerInterface", &previewer);
}
