#include <ctkPluginActivator.h>
#include <ctkPluginContext.h>

#include <QCoreApplication>
#include <stdexcept>

class Greeter : public QObject
{
    Q_OBJECT
};

/// A plugin with one service. It notes its starts and stops in the application's property "journal" and fails as the
/// property "misbehaviour" says.
class SamplePlugin : public QObject, public ctkPluginActivator
{
    Q_OBJECT
    Q_INTERFACES(ctkPluginActivator)
    Q_PLUGIN_METADATA(IID "sample.plugin")

public:
    void start(ctkPluginContext* context) override
    {
        context->registerService({QStringLiteral("Greeter")}, &m_greeter);
        Note(QStringLiteral("start"));
    }

    void stop(ctkPluginContext* /*context*/) override { Note(QStringLiteral("stop")); }

private:
    static void Note(const QString& event)
    {
        const QString journal = qApp->property("journal").toString();
        qApp->setProperty("journal", QString(journal + event + QStringLiteral(" " SAMPLE_NAME ",")));
        if (qApp->property("misbehaviour").toString() == event)
            throw std::runtime_error("no greeting today");
    }

    // Outlives a stop, so that only the framework can withdraw the service.
    Greeter m_greeter;
};

#include "sample_plugin.moc"
