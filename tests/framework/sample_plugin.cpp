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
        context->registerService({QStringLiteral("Greeter")}, &m_greeter);
        Note(QStringLiteral("start "), context);
    }

    void stop(ctkPluginContext* context) override { Note(QStringLiteral("stop "), context); }

private:
    static void Note(const QString& event, ctkPluginContext* context)
    {
        const QString journal = qApp->property("journal").toString();
        qApp->setProperty("journal", QString(journal + event + QStringLiteral(SAMPLE_NAME ",")));
        const QString misbehaviour = qApp->property("misbehaviour").toString();
        if (misbehaviour == event + QStringLiteral("exception"))
            throw std::runtime_error("no greeting today");
        if (misbehaviour == event + QStringLiteral("number"))
            throw 42;
        if (misbehaviour == event + QStringLiteral("again"))
            context->installPlugin(qApp->property("location").toUrl())->start();
    }

    // Outlives a stop, so that only the framework can withdraw the service.
    Greeter m_greeter;
};

#include "sample_plugin.moc"
