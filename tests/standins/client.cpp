#include "tests/standins/client.h"

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>
#include <QUrl>

Client::Client()
    : m_server("stand-in-%1"_s.arg(QCoreApplication::applicationPid()))
{
    journal.clear();
    settings.values.insert("vtr.web/currentserver"_s, m_server);
}

Client::~Client()
{
    if (!m_framework)
        return;
    m_framework->stop();
    // An installed CTK stops the plugin on another thread, which leaves the window to this thread's event loop.
    const auto hasStopped = [this] { return m_framework->getState() == ctkPlugin::RESOLVED; };
    if (!QTest::qWaitFor(hasStopped, Patience))
        qFatal("The plugin framework does not stop");
    m_framework->waitForStop(Patience); // returns when that thread has let go of the framework
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    for (const QString& folder : {"data"_s, "Data"_s}) {
        const QString file = AccountFile(folder);
        if (!QFile::remove(file))
            QDir().rmdir(file);
    }
}

QMap<QString, QObject*> Client::Services()
{
    return {{"VTSettingsInterface"_s, &settings}, {"VTLoggerInterface"_s, &logger},
        {"VTUiLoaderInterface"_s, &uiLoader}, {"VTMessagboxInterface"_s, &messageBox},
        {"VTCommunicationInterface"_s, &communication}, {"VTRenderCoreInterface"_s, &renderCore},
        {"VTConfigurationInterface"_s, &configuration}, {"VTPreviewerInterface"_s, &previewer}};
}

void Client::Start()
{
    if (!m_framework) {
        // An installed CTK keeps a database, whose folder it reads once per process. Each test has its own, because tests run
        // in parallel.
        static const QTemporaryDir storage;
        ctkProperties properties;
        properties.insert("org.commontk.pluginfw.storage"_s, storage.path());
        properties.insert("org.commontk.pluginfw.storage.clean"_s, "onFirstInit"_s);
        m_factory = std::make_unique<ctkPluginFrameworkFactory>(properties);
        m_framework = m_factory->getFramework();
        m_framework->start();
        const QStringList interfaces = Services().keys();
        for (const QString& interface : interfaces) {
            if (!leftOut.contains(interface))
                Register(interface);
        }
    }
    m_plugin = Context()->installPlugin(QUrl::fromLocalFile(QStringLiteral(PLUGIN_FILE)));
    m_plugin->start(ctkPlugin::START_TRANSIENT);
}

bool Client::Open()
{
    Start();
    QVariant state;
    return Initialize() == 0 && Service()->Show(state, {}) == 0 && Form() && Form()->isVisible();
}

VTBaseInterface* Client::Service() const
{
    const ctkServiceReference reference = Context()->getServiceReference("VTBaseInterface"_s);
    return reference ? qobject_cast<VTBaseInterface*>(Context()->getService(reference)) : nullptr;
}

QAction* Client::Entry(const char* text) const
{
    const auto actions = Window()->findChildren<QAction*>();
    for (QAction* action : actions) {
        if (action->text() == QLatin1String(text))
            return action;
    }
    return nullptr;
}

QList<QTimer*> Client::RunningTimers(int interval) const
{
    QList<QTimer*> running;
    const auto timers = Window()->findChildren<QTimer*>(QString(), Qt::FindDirectChildrenOnly);
    for (QTimer* timer : timers) {
        if (timer->isActive() && timer->interval() == interval)
            running.append(timer);
    }
    return running;
}

QString Client::AccountFile(const QString& folder) const
{
    return QDir(QCoreApplication::applicationDirPath())
        .filePath("%1/%2_login-ann.ini"_s.arg(folder, m_server));
}

bool Client::Tick(int interval) const
{
    const QList<QTimer*> timers = RunningTimers(interval);
    return timers.size() == 1 && QMetaObject::invokeMethod(timers.first(), "timeout", Qt::DirectConnection);
}

QString Numbered(const QString& prefix, int number)
{
    return QString(prefix + "%1"_s.arg(number, 2, 10, QLatin1Char('0')));
}

QVariantMap MakeJob(int number, int status, int progress)
{
    return {{"job_increasement"_s, QString::number(number)}, {"job_id"_s, "id-%1"_s.arg(number)},
        {"job_type"_s, "type-%1"_s.arg(number)}, {"job_name"_s, "name-%1"_s.arg(number)},
        {"job_submit_time"_s, "time-%1"_s.arg(number)}, {"job_progress"_s, progress},
        {"job_status"_s, status}, {"job_cost"_s, "%1.5"_s.arg(number)}, {"job_cost_unit"_s, "RMB"_s}};
}

QVariantList MakeJobs(int count)
{
    QVariantList jobs;
    for (int number = 1; number <= count; ++number)
        jobs.append(MakeJob(number));
    return jobs;
}
