#include <ctkPlugin.h>
#include <ctkPluginActivator.h>
#include <ctkPluginContext.h>

#include <QCoreApplication>
#include <QUrl>
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
        Note(QStringLiteral("start"));
        context->registerService(QStringList {QStringLiteral("Greeter")}, &m_greeter);
        Misbehave(QStringLiteral("start"), *context);
    }

    void stop(ctkPluginContext* context) override
    {
        Note(QStringLiteral("stop"));
        Misbehave(QStringLiteral("stop"), *context);
    }

private:
    static void Note(const QString& event)
    {
        const QStringList journal = qApp->property("journal").toStringList();
        qApp->setProperty("journal", journal + QStringList {event + QStringLiteral(" " SAMPLE_NAME)});
    }

    static void Misbehave(const QString& when, ctkPluginContext& context)
    {
        const QString misbehaviour = qApp->property("misbehaviour").toString();
        if (misbehaviour == when + QStringLiteral(" exception"))
            throw std::runtime_error("no greeting today");
        if (misbehaviour == when + QStringLiteral(" number"))
            throw 42;
        if (misbehaviour == when + QStringLiteral(" again"))
            context.installPlugin(qApp->property("location").toUrl())->start();
    }

    // Outlives a stop, so that only the framework can withdraw the service.
    Greeter m_greeter;
};

#include "sample_plugin.moc"
