#include <ctkException.h>
#include <ctkPluginException.h>
#include <ctkPluginFramework.h>
#include <ctkPluginFrameworkFactory.h>

#include <optional>
#include <QTemporaryDir>
#include <QtTest>

namespace {

const QString hostFile = QStringLiteral(HOST_PLUGIN);
const QString guestFile = QStringLiteral(GUEST_PLUGIN);
const QString inertFile = QStringLiteral(INERT_PLUGIN);

/// The type of the ctkPluginException that a call throws; none where it throws nothing.
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

Q_DECLARE_METATYPE(ctkPluginException::Type)

class TestPlugins : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        qApp->setProperty("journal", QStringList());
        Misbehave(QString());
        m_framework = ctkPluginFrameworkFactory().getFramework();
        m_framework->start();
        m_context = m_framework->getPluginContext();
    }

    void cleanup() { m_framework.reset(); }

    void installsStartsAndStopsAgainAndAgain()
    {
        const auto plugin = Install(hostFile);
        QCOMPARE(plugin->getSymbolicName(), QStringLiteral("sample.host"));
        QCOMPARE(plugin->getHeaders().value(QStringLiteral("Plugin-Vendor")), QStringLiteral("Samples"));
        QCOMPARE(plugin->getState(), ctkPlugin::INSTALLED);
        QVERIFY(!plugin->getPluginContext());
        QCOMPARE(
            Install(QFileInfo(hostFile).path() + QStringLiteral("/../plugins/libsample_host.so")), plugin);

        for (int round = 0; round < 2; ++round) {
            plugin->start(ctkPlugin::START_TRANSIENT);
            plugin->start();
            QCOMPARE(plugin->getState(), ctkPlugin::ACTIVE);
            ctkPluginContext* const context = plugin->getPluginContext();
            const ctkServiceReference reference = m_context->getServiceReference(QStringLiteral("Greeter"));
            QVERIFY(m_context->getService(reference)->inherits("Greeter"));

            plugin->stop();
            plugin->stop();
            QCOMPARE(plugin->getState(), ctkPlugin::RESOLVED);
            QVERIFY(!reference);
            QVERIFY(!plugin->getPluginContext());
            QVERIFY_EXCEPTION_THROWN(
                context->getServiceReference(QStringLiteral("Greeter")), ctkIllegalStateException);
        }
        QCOMPARE(Journal(),
            (QStringList {QStringLiteral("start sample.host"), QStringLiteral("stop sample.host"),
                QStringLiteral("start sample.host"), QStringLiteral("stop sample.host")}));
    }

    void stopsPluginsInReverseOrderOfTheirStarts()
    {
        const auto host = Install(hostFile);
        const auto guest = Install(guestFile);
        guest->start();
        host->start();
        QCOMPARE(m_context->getServiceReferences(QStringLiteral("Greeter")).size(), 2);

        m_framework->stop();
        QCOMPARE(Journal().mid(2),
            (QStringList {QStringLiteral("stop sample.host"), QStringLiteral("stop sample.guest")}));
        QCOMPARE(ThrownType([&] { host->start(); }), ctkPluginException::INVALID_OPERATION);

        m_framework->start();
        host->start();
        QCOMPARE(host->getState(), ctkPlugin::ACTIVE);
        m_framework.reset();
        QCOMPARE(Journal().last(), QStringLiteral("stop sample.host"));
    }

    void undoesAFailedStart_data()
    {
        QTest::addColumn<QString>("misbehaviour");
        QTest::newRow("exception") << QStringLiteral("start exception");
        QTest::newRow("foreign type") << QStringLiteral("start number");
        QTest::newRow("starts itself") << QStringLiteral("start again");
    }

    void undoesAFailedStart()
    {
        QFETCH(QString, misbehaviour);
        const auto plugin = Install(hostFile);
        Misbehave(misbehaviour);
        QCOMPARE(ThrownType([&] { plugin->start(); }), ctkPluginException::ACTIVATOR_ERROR);
        QCOMPARE(plugin->getState(), ctkPlugin::RESOLVED);
        QVERIFY(!m_context->getServiceReference(QStringLiteral("Greeter")));
        QCOMPARE(Journal().size(), 1);

        Misbehave(QString());
        plugin->start();
        QVERIFY(m_context->getServiceReference(QStringLiteral("Greeter")));
    }

    void stopsInSpiteOfAFailure()
    {
        const auto host = Install(hostFile);
        const auto guest = Install(guestFile);
        host->start();
        Misbehave(QStringLiteral("stop exception"));
        QCOMPARE(ThrownType([&] { host->stop(); }), ctkPluginException::ACTIVATOR_ERROR);
        QCOMPARE(host->getState(), ctkPlugin::RESOLVED);
        QVERIFY(!m_context->getServiceReference(QStringLiteral("Greeter")));

        host->start();
        guest->start();
        const QRegularExpression warning(QStringLiteral("no greeting today"));
        QTest::ignoreMessage(QtWarningMsg, warning);
        QTest::ignoreMessage(QtWarningMsg, warning);
        m_framework->stop();
        QCOMPARE(host->getState(), ctkPlugin::RESOLVED);
        QCOMPARE(guest->getState(), ctkPlugin::RESOLVED);
    }

    void refusesToStartWithoutActivator()
    {
        const auto plugin = Install(inertFile);
        QCOMPARE(ThrownType([&] { plugin->start(); }), ctkPluginException::ACTIVATOR_ERROR);
        QCOMPARE(plugin->getState(), ctkPlugin::INSTALLED);
    }

    void refusesToInstall_data()
    {
        QVERIFY(m_folder.isValid());
        const QString text = m_folder.filePath(QStringLiteral("libsample_text.so"));
        const QString nameless = m_folder.filePath(QStringLiteral("libsample_nameless.so"));
        const QString twin = m_folder.filePath(QFileInfo(hostFile).fileName());
        QFile file(text);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("not a library\n");
        file.close();
        QVERIFY(QFile::copy(hostFile, nameless));
        QVERIFY(QFile::copy(hostFile, twin));

        QTest::addColumn<QUrl>("location");
        QTest::addColumn<ctkPluginException::Type>("type");
        QTest::newRow("remote") << QUrl(QStringLiteral("http://localhost/libsample_host.so"))
                                << ctkPluginException::UNSUPPORTED_OPERATION;
        QTest::newRow("missing") << QUrl::fromLocalFile(m_folder.filePath(QStringLiteral("libnone.so")))
                                 << ctkPluginException::READ_ERROR;
        QTest::newRow("no library") << QUrl::fromLocalFile(text) << ctkPluginException::READ_ERROR;
        QTest::newRow("no manifest under its name")
            << QUrl::fromLocalFile(nameless) << ctkPluginException::MANIFEST_ERROR;
        QTest::newRow("symbolic name taken")
            << QUrl::fromLocalFile(twin) << ctkPluginException::DUPLICATE_PLUGIN_ERROR;
    }

    void refusesToInstall()
    {
        QFETCH(QUrl, location);
        QFETCH(ctkPluginException::Type, type);
        const auto host = Install(hostFile);
        QCOMPARE(ThrownType([&] { m_context->installPlugin(location); }), type);
        QCOMPARE(Install(hostFile), host);
    }

private:
    static QStringList Journal() { return qApp->property("journal").toStringList(); }

    static void Misbehave(const QString& how)
    {
        qApp->setProperty("misbehaviour", how);
        qApp->setProperty("location", QUrl::fromLocalFile(hostFile));
    }

    QSharedPointer<ctkPlugin> Install(const QString& file)
    {
        return m_context->installPlugin(QUrl::fromLocalFile(file));
    }

    QTemporaryDir m_folder;
    QSharedPointer<ctkPluginFramework> m_framework;
    ctkPluginContext* m_context = nullptr;
};

QTEST_GUILESS_MAIN(TestPlugins)
#include "tst_plugins.moc"
