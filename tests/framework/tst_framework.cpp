#include "framework/ctk/plugin_manifest.h"
#include "tests/support/test_tables.h"

#include <ctkException.h>
#include <ctkPluginConstants.h>
#include <ctkPluginException.h>
#include <ctkPluginFramework.h>
#include <ctkPluginFrameworkFactory.h>

#include <QTemporaryDir>

#include <optional>

namespace {

using Invalid = ctkInvalidArgumentException;

const QString HostFile = QStringLiteral(HOST_PLUGIN);
const QString Greeter = "Greeter"_s;
const QString Object = "QObject"_s;

/// The type of the `ctkPluginException` that a call throws; none when it throws nothing.
template <typename Call>
std::optional<ctkPluginException::Type> ThrownType(Call call)
{
    try {
        call();
    } catch (const ctkPluginException& exception) {
        return exception.getType();
    }
    return std::nullopt;
}

} // namespace

/// Manifests, the service registry, and the life cycle of real plugin libraries.
class TestFramework : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        qApp->setProperty("journal", QString());
        Misbehave(QString());
        m_framework = ctkPluginFrameworkFactory().getFramework();
        m_framework->start();
        m_context = m_framework->getPluginContext();
    }

    void ReadsManifests()
    {
        const QByteArray name("Plugin-SymbolicName: a.b\n");
        const QPair<QByteArray, QString> vendors[] = {{"Plugin-SymbolicName:a.b", {}},
            {"Plugin-SymbolicName: a.b ;c\n", {}}, {"Plugin-SymbolicName: a\r\n .\r\n b\r\n", {}},
            {name + "Plugin-Vendor: Caf\xC3\n \xA9\n", "Café"_s}, {name + "\r\nPlugin-Vendor: x\r\n?", {}}};
        for (const auto& [text, vendor] : vendors) {
            const ManifestHeaders headers = ParseManifest(text);
            QCOMPARE(SymbolicName(headers), "a.b"_s);
            QCOMPARE(headers.value("Plugin-Vendor"_s), vendor);
        }
        const QByteArray malformed[] = {"Plugin-Version: 1.0.0\n", " " + name, name + "rubbish\n"};
        for (const QByteArray& text : malformed)
            QCOMPARE(ThrownType([&] { ParseManifest(text); }), ctkPluginException::MANIFEST_ERROR);
        for (const char* file : {"/opt/a.b/libcom_vtr_qsclient.so.1.0", "C:/client/com_vtr_qsclient.dll"})
            QCOMPARE(ResourceFolder(QLatin1String(file)), "com.vtr.qsclient"_s);
    }

    void OrdersReferencesByRankingThenRegistration()
    {
        QObject services[5];
        const QVariant rankings[] = {0, 7, -1, 7, QVariant()};
        for (int i = 0; i < 5; ++i)
            Register(&services[i], rankings[i]);
        QVector<qint64> found;
        const auto references = m_context->getServiceReferences(Object);
        for (const auto& reference : references)
            found.append(m_context->getService(reference) - services);
        QCOMPARE(found, (QVector<qint64> {1, 3, 0, 4, 2}));
        QCOMPARE(m_context->getService(m_context->getServiceReference(Object)), &services[1]);
    }

    void HandsOutNoServiceThatIsGone()
    {
        for (const bool byDestruction : {false, true}) {
            auto service = std::make_unique<QObject>();
            ctkServiceRegistration registration = Register(service.get());
            const ctkServiceReference reference = registration.getReference();
            QCOMPARE(m_context->getService(reference), service.get());
            if (byDestruction)
                service.reset();
            else
                registration.unregister();
            QVERIFY(!reference);
            QVERIFY(!m_context->getService(reference));
            QVERIFY(!m_context->getServiceReference(Object));

            // A registrant may delete its object first, but it withdraws the service only once.
            if (byDestruction)
                registration.unregister();
            QVERIFY_EXCEPTION_THROWN(registration.unregister(), ctkIllegalStateException);
        }
    }

    void EndsTheContextWithTheFramework()
    {
        QObject service;
        const ctkServiceReference reference = Register(&service).getReference();
        m_framework->stop();
        QCOMPARE(m_framework->getState(), ctkPlugin::RESOLVED);
        QVERIFY(!reference);
        QVERIFY(!m_framework->getPluginContext());
        QVERIFY_EXCEPTION_THROWN(Register(&service), ctkIllegalStateException);
        m_framework->start();
        QVERIFY(!m_framework->getPluginContext()->getServiceReference(Object));
    }

    void InstallsStartsAndStopsAgainAndAgain()
    {
        const auto plugin = Install(HostFile);
        QCOMPARE(plugin->getSymbolicName(), "sample.host"_s);
        QCOMPARE(plugin->getState(), ctkPlugin::INSTALLED);
        QCOMPARE(Install(QFileInfo(HostFile).path() + "/../plugins/libsample_host.so"_s), plugin);
        for (int round = 0; round < 2; ++round) {
            plugin->start(ctkPlugin::START_TRANSIENT);
            plugin->start();
            QCOMPARE(plugin->getState(), ctkPlugin::ACTIVE);
            ctkPluginContext* const context = plugin->getPluginContext();
            const ctkServiceReference reference = m_context->getServiceReference(Greeter);
            QVERIFY(m_context->getService(reference)->inherits("Greeter"));
            plugin->stop();
            plugin->stop();
            QCOMPARE(plugin->getState(), ctkPlugin::RESOLVED);
            QVERIFY(!reference);
            QVERIFY_EXCEPTION_THROWN(context->getServiceReference(Greeter), ctkIllegalStateException);
        }
        QCOMPARE(Journal(), "start sample.host,stop sample.host,start sample.host,stop sample.host,"_s);
    }

    void StopsPluginsInReverseOrderOfTheirStarts()
    {
        const auto host = Install(HostFile);
        const auto guest = Install(QStringLiteral(GUEST_PLUGIN));
        guest->start();
        host->start();
        QCOMPARE(m_context->getServiceReferences(Greeter).size(), 2);
        m_framework->stop();
        QVERIFY(Journal().endsWith(",stop sample.host,stop sample.guest,"_s));
        QCOMPARE(ThrownType([&] { host->start(); }), ctkPluginException::INVALID_OPERATION);
        m_framework->start();
        host->start();
        m_framework.reset();
        QVERIFY(Journal().endsWith(",start sample.host,stop sample.host,"_s));
    }

    void UndoesAFailedStart()
    {
        const auto plugin = Install(HostFile);
        Misbehave("start"_s);
        QCOMPARE(ThrownType([&] { plugin->start(); }), ctkPluginException::ACTIVATOR_ERROR);
        QCOMPARE(plugin->getState(), ctkPlugin::RESOLVED);
        QVERIFY(!m_context->getServiceReference(Greeter));
        Misbehave(QString());
        plugin->start();
        QVERIFY(m_context->getServiceReference(Greeter));
    }

    void StopsInSpiteOfAFailure()
    {
        const auto host = Install(HostFile);
        const auto guest = Install(QStringLiteral(GUEST_PLUGIN));
        host->start();
        Misbehave("stop"_s);
        QCOMPARE(ThrownType([&] { host->stop(); }), ctkPluginException::ACTIVATOR_ERROR);
        QCOMPARE(host->getState(), ctkPlugin::RESOLVED);
        QVERIFY(!m_context->getServiceReference(Greeter));
        host->start();
        guest->start();
        for (int plugin = 0; plugin < 2; ++plugin)
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression("no greeting today"_s));
        m_framework->stop();
        QCOMPARE(host->getState(), ctkPlugin::RESOLVED);
        QCOMPARE(guest->getState(), ctkPlugin::RESOLVED);
    }

    void RefusesToInstall()
    {
        const QTemporaryDir folder;
        const auto place
            = [&folder](const QString& name) { return QUrl::fromLocalFile(folder.filePath(name)); };
        const QUrl nameless = place("libsample_nameless.so"_s);
        const QUrl twin = place("libsample_host.so"_s);
        for (const QUrl& copy : {nameless, twin})
            QVERIFY(QFile::copy(HostFile, copy.toLocalFile()));
        const auto host = Install(HostFile);
        const QMap<QUrl, ctkPluginException::Type> refusals {
            {place("libnone.so"_s), ctkPluginException::READ_ERROR},
            {nameless, ctkPluginException::MANIFEST_ERROR},
            {twin, ctkPluginException::DUPLICATE_PLUGIN_ERROR}};
        for (auto refusal = refusals.begin(); refusal != refusals.end(); ++refusal)
            QCOMPARE(ThrownType([&] { m_context->installPlugin(refusal.key()); }), refusal.value());
        QCOMPARE(Install(HostFile), host);
    }

private:
    static QString Journal() { return qApp->property("journal").toString(); }
    static void Misbehave(const QString& how) { qApp->setProperty("misbehaviour", how); }

    QSharedPointer<ctkPlugin> Install(const QString& file)
    {
        return m_context->installPlugin(QUrl::fromLocalFile(file));
    }

    ctkServiceRegistration Register(QObject* service, const QVariant& ranking = {})
    {
        return m_context->registerService(
            {Object}, service, {{ctkPluginConstants::SERVICE_RANKING, ranking}});
    }

    QSharedPointer<ctkPluginFramework> m_framework;
    ctkPluginContext* m_context = nullptr;
};

QTEST_GUILESS_MAIN(TestFramework)
#include "tst_framework.moc"
