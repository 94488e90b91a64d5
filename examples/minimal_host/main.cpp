// A host of the client's main window. Nothing leaves this machine: the sign-in and the only job are canned answers.
#include <ctkPluginFramework.h>
#include <ctkPluginFrameworkFactory.h>
#include <idle_services.h>

#include <QApplication>
#include <QFile>
#include <QMessageBox>
#include <QResource>
#include <QTableWidget>
#include <QUiLoader>
#include <QUrl>

#include <cstdio>

class Settings : public idle::Settings
{
    Q_OBJECT
    Q_INTERFACES(VTSettingsInterface)

public:
    QVariant Value(const QString& key, const QVariant& other) override { return m_values.value(key, other); }
    void SetValue(const QString& key, const QVariant& value) override { m_values.insert(key, value); }

private:
    QVariantMap m_values {{"vtr.web/currentserver", "example"}};
};

class LoggerObject : public QObject, public VTLoggerInterface
{
    Q_OBJECT
    Q_INTERFACES(VTLoggerInterface)
};

class UiLoader : public idle::UiLoader
{
    Q_OBJECT
    Q_INTERFACES(VTUiLoaderInterface)

public:
    QWidget* LoadUi(const QString& key, QWidget* parent) override
    {
        QFile file(":/forms/" + key + ".ui");
        return file.open(QIODevice::ReadOnly) ? QUiLoader().load(&file, parent) : nullptr;
    }
};

class MessageBox : public idle::MessageBox
{
    Q_OBJECT
    Q_INTERFACES(VTMessagboxInterface)

public:
    QString ShowMessage(int /*kind*/, const QString& title, const QString& text, const QIcon& /*icon*/,
        const QString& detail, const QVariantHash& /*buttons*/, bool /*flag*/) override
    {
        const auto answer = QMessageBox::question(nullptr, title, (text + detail).toHtmlEscaped());
        return answer == QMessageBox::Yes ? "btnMessageBox_2" : "btnMessageBox_1";
    }
};

class Communication : public idle::Communication
{
    Q_OBJECT
    Q_INTERFACES(VTCommunicationInterface)

public:
    void SignIn(const QString& name) { emit SignInResponse(200, {{"loginname", name}, {"username", name}}); }
    int GetJobList(const QVariant& /*state*/, const QVariantHash& request) override
    {
        const QVariantMap job {{"job_increasement", "1"}, {"job_id", "a"}, {"job_name", "lighthouse"}};
        const QVariantMap data {{"list", QVariantList {job}}, {"total", 1}};
        emit JobListResponse(200, {{"identifier", request.value("identifier")}, {"data", data}});
        return 0;
    }
};

class RenderCore : public idle::RenderCore
{
    Q_OBJECT
    Q_INTERFACES(VTRenderCoreInterface)
};

class Configuration : public idle::Configuration
{
    Q_OBJECT
    Q_INTERFACES(VTConfigurationInterface)
};

class Previewer : public idle::Previewer
{
    Q_OBJECT
    Q_INTERFACES(VTPreviewerInterface)
};

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QResource::registerResource(UI_RESOURCES);

    // The services are declared before the framework, so they outlive it; so does the factory, which may own it.
    Settings settings;
    idle::Logger<LoggerObject> logger;
    UiLoader uiLoader;
    MessageBox messageBox;
    Communication communication;
    RenderCore renderCore;
    Configuration configuration;
    Previewer previewer;
    ctkPluginFrameworkFactory factory;
    const QSharedPointer<ctkPluginFramework> framework = factory.getFramework();
    framework->start();
    ctkPluginContext* context = framework->getPluginContext();
    const QHash<QString, QObject*> services {{"VTSettingsInterface", &settings},
        {"VTLoggerInterface", &logger}, {"VTUiLoaderInterface", &uiLoader},
        {"VTMessagboxInterface", &messageBox}, {"VTCommunicationInterface", &communication},
        {"VTRenderCoreInterface", &renderCore}, {"VTConfigurationInterface", &configuration},
        {"VTPreviewerInterface", &previewer}};
    for (auto service = services.begin(); service != services.end(); ++service)
        context->registerService({service.key()}, service.value());

    const QSharedPointer<ctkPlugin> plugin = context->installPlugin(QUrl::fromLocalFile(PLUGIN));
    plugin->start(ctkPlugin::START_TRANSIENT);
    auto* client = qobject_cast<VTBaseInterface*>(
        context->getService(context->getServiceReference("VTBaseInterface")));
    QVariant state;
    if (client->Initialize({{"plugin_context", QVariant::fromValue(context)}}) != 0
        || client->Show(state, {}) != 0)
        return 1;
    communication.SignIn("ann");

    for (const QWidget* window : QApplication::topLevelWidgets()) {
        if (const auto* jobs = window->findChild<QTableWidget*>("twtMyRender"))
            std::printf("%s: %d job\n", window->isVisible() ? "shown" : "hidden", jobs->rowCount());
    }
    if (!QApplication::arguments().contains("--once"))
        QApplication::exec();

    client->Uninitialize();
    plugin->stop();
    framework->stop();
    framework->waitForStop(5000);
}

#include "main.moc"
