#include "client_test.h"
#include "message_capture.h"
#include "vtr_parameters.h"

#include <ctkPluginActivator.h>
#include <ctkPluginContext.h>

#include <QJsonObject>
#include <QPluginLoader>
#include <QSystemTrayIcon>

namespace {

struct Sibling
{
    const char* name; ///< of the interface
    const char* report;
};
const Sibling siblings[] = {
    {"VTSettingsInterface",
        "critical|[com.vtr.qsclient] Module com.vtr.settings is invalid|vtr_qsclient|199"},
    {"VTLoggerInterface", "critical|[com.vtr.qsclient] Module com.vtr.logger is invalid|vtr_qsclient|218"},
    {"VTUiLoaderInterface", "debug|Module com.vtr.uiloader is invalid|vtr_qsclient|230"},
    {"VTMessagboxInterface",
        "critical|[com.vtr.qsclient] Module com.vtr.messagebox is invalid|vtr_qsclient|243"},
    {"VTCommunicationInterface",
        "critical|[com.vtr.qsclient] Module com.vtr.communication is invalid|vtr_qsclient|257"},
    {"VTRenderCoreInterface",
        "critical|[com.vtr.qsclient] Module com.vtr.rendercore is invalid|vtr_qsclient|274"},
    {"VTConfigurationInterface",
        "critical|[com.vtr.qsclient] Module com.vtr.configuration is invalid|vtr_qsclient|290"},
    {"VTPreviewerInterface",
        "critical|[com.vtr.qsclient] Module com.vtr.previewer is invalid|vtr_qsclient|304"},
};

/// Calls every slot of the window with values as they come out of their constructors.
void CallEverySlot(QWidget* window)
{
    RegisterVTParameters();
    const QMetaObject* type = window->metaObject();
    QVariantMap conditions;
    quint64 null = 0; // what types without a name at run time, pointers and enumerations, are made of
    for (int i = type->methodOffset(); i < type->methodCount(); ++i) {
        const QMetaMethod method = type->method(i);
        if (method.methodType() != QMetaMethod::Slot || method.returnType() != QMetaType::Void)
            continue;
        QVector<QVariant> values(method.parameterCount());
        void* arguments[8] = {};
        for (int k = 0; k < method.parameterCount(); ++k) {
            values[k] = QVariant(method.parameterType(k), nullptr);
            const bool isReference = method.parameterTypes().at(k).endsWith('&');
            void* const unnamed = isReference ? static_cast<void*>(&conditions) : &null;
            const bool isUnnamed = method.parameterType(k) == QMetaType::UnknownType;
            arguments[k + 1] = isUnnamed ? unnamed : values[k].data();
        }
        QMetaObject::metacall(window, QMetaObject::InvokeMetaMethod, i, arguments);
    }
}

} // namespace

/// The plugin file and its service object: metadata, start and stop, status codes, attachment of the siblings.
class TestPluginService : public QObject
{
    Q_OBJECT

private slots:
    void carriesItsMetadataAndManifest()
    {
        QPluginLoader loader(QStringLiteral(PLUGIN_FILE));
        QCOMPARE(loader.metaData().value("IID"_s).toString(), "com.vtr.qsclient"_s);
        QCOMPARE(loader.metaData().value("className"_s).toString(), "VTQsClientPlugin"_s);
        QCOMPARE(loader.metaData().value("MetaData"_s).toObject(), QJsonObject());
        QVERIFY(loader.load());
        for (const char* folder : {"com.vtr.qsclient", "com.vtr.qsclient_1.0.0"}) {
            QFile file(":/%1/META-INF/MANIFEST.MF"_s.arg(QLatin1String(folder)));
            QVERIFY(file.open(QIODevice::ReadOnly));
            const QString text = QString::fromLatin1(file.readAll());
            const QRegularExpression expected(
                "^Plugin-SymbolicName: com\\.vtr\\.qsclient\r\nPlugin-Version: 1\\.0\\.0\r\n"
                "Plugin-Name: com\\.vtr\\.qsclient\r\nPlugin-Copyright: [^\r\n]+\r\nPlugin-Vendor: [^\r\n]+\r\n\\z"_s);
            QVERIFY2(expected.match(text).hasMatch(), qPrintable(text));
        }
        auto* activator = qobject_cast<ctkPluginActivator*>(loader.instance());
        QVERIFY(activator);
        activator->stop(nullptr);
    }

    void stopsWithoutATraceAndStartsAgain()
    {
        Client client;
        const int widgets = QApplication::allWidgets().size();
        for (int round = 1; round <= 3; ++round) {
            client.Start();
            QVERIFY(client.Window());
            QCOMPARE(client.settings.calls.count("Initialize"_s), round - 1);
            QVERIFY(client.Open());
            client.SignIn();
            client.Stop();
            QVERIFY(!client.Service());
            QCOMPARE(QApplication::allWidgets().size(), widgets);
            QCOMPARE(client.communication.receivers(SIGNAL(JobListResponse(int, QVariantMap))), 0);
            QCOMPARE(client.uiLoader.trayMenu.actions().size(), 2);
            QCOMPARE(client.settings.calls.count("Uninitialize"_s), round);
        }
    }

    void answersWithItsStatusCodes()
    {
        Client client;
        client.Start();
        VTBaseInterface& service = *client.Service();
        QVariant state;
        QCOMPARE(service.Show(state, {}), -3);
        QVERIFY(!state.isValid());
        QCOMPARE(service.Hide(1), -3);
        QCOMPARE(service.Activate(1, {}), -3);
        QCOMPARE(service.Close(1), -3);
        QCOMPARE(service.Initialize({}), -1);
        QCOMPARE(service.Uninitialize(), 0);

        QCOMPARE(client.Initialize(), 0);
        QCOMPARE(client.Initialize(), 0);
        QCOMPARE(client.settings.calls, (QStringList {"Initialize"_s, "Show"_s}));
        for (const QVariant& request : {QVariant(), QVariant(0), QVariant(2), QVariant("x"_s)}) {
            QCOMPARE(service.Hide(request), -4);
            QCOMPARE(service.Activate(request, {}), -4);
            QCOMPARE(service.Close(request), -4);
        }
        QVERIFY(client.Window());
        QVERIFY(!client.Form()->isVisible());
    }

    void showsOnceAndClosesIntoTheTray()
    {
        Client client;
        QVERIFY(client.Open());
        QCOMPARE(client.uiLoader.loadedKeys.join(" "_s),
            "com.vtr.qsclient com.vtr.setargument com.vtr.setparent com.vtr.search com.vtr.inputdialog"_s);
        QVERIFY(!QGuiApplication::quitOnLastWindowClosed());
        client.Form()->hide();
        QVariant state;
        QCOMPARE(client.Service()->Show(state, {}), 0);
        QCOMPARE(state, QVariant(1));
        QVERIFY(!client.Form()->isVisible());
        QCOMPARE(client.Service()->Close(1), 0);
        QVERIFY(client.Window());
    }

    void hidesForGoodAndIsHarmlessAfterwards()
    {
        Client client;
        client.Start();
        CallEverySlot(client.Window());
        QVERIFY(client.Open());
        client.SignIn();
        const QPointer<QWidget> form = client.Form();
        QCOMPARE(client.Service()->Hide("1"_s), 0);
        QVERIFY(!client.Window());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!form);

        QVariant state;
        QCOMPARE(client.Service()->Show(state, {}), 0);
        QCOMPARE(state, QVariant(1));
        QCOMPARE(client.uiLoader.loadedKeys.size(), 5);
        client.journal.Take();
        CallEverySlot(client.Window());
        client.communication.DeliverJobs(MakeJobs(3), 3);
        QCOMPARE(client.Service()->Activate(1, {}), 0);
        QCOMPARE(client.Service()->Close(1), 0);
        QCOMPARE(client.journal.Take(), QStringList());
    }

    void survivesTheEndOfItsForms()
    {
        const QStringList keys
            = "com.vtr.qsclient com.vtr.setargument com.vtr.setparent com.vtr.search com.vtr.inputdialog"_s
                  .split(" "_s);
        for (const QString& key : keys) {
            Client client;
            QVERIFY(client.Open());
            client.SignIn();
            delete client.uiLoader.Form(key);
            emit client.uiLoader.SkinChanged("teal"_s);
            emit client.uiLoader.LanguageChanged("vtr_de.qm"_s);
            client.communication.DeliverJobs(MakeJobs(3), 3, 1);
            emit client.communication.SignOutResponse(200, {});
            if (!client.Form())
                CallEverySlot(client.Window());
            QCOMPARE(client.Service()->Uninitialize(), 0);
        }
    }

    void comesBackAfterUninitialize()
    {
        Client client;
        QVERIFY(client.Open());
        QCOMPARE(client.Service()->Uninitialize(), 0);
        QCOMPARE(client.settings.calls.mid(2), (QStringList {"Hide 7"_s, "Uninitialize"_s}));
        QCOMPARE(client.logger.calls, (QStringList {"Initialize"_s, "Uninitialize"_s}));
        QCOMPARE(client.communication.calls, (QStringList {"Initialize"_s, "Show"_s}));
        QVERIFY(!client.Window());
        QVERIFY(client.Open());
        client.SignIn();
        client.communication.DeliverJobs({MakeJob(1)}, 1);
        QCOMPARE(client.Table("twtMyRender"_s)->rowCount(), 1);
    }

    void reportsASiblingThatIsMissingOrFails_data() { AddRows(siblings); }
    void reportsASiblingThatIsMissingOrFails()
    {
        const QString interface = QString::fromLatin1(Row(siblings).name);
        const QStringList report {QString::fromLatin1(Row(siblings).report)};
        Client client;
        client.leftOut = QStringList {interface, "VTBaseAppInterface"_s};
        client.Start();
        const MessageCapture capture;
        QCOMPARE(client.Initialize(), -1);
        QCOMPARE(MessageCapture::Take(), report);
        QVERIFY(client.uiLoader.loadedKeys.isEmpty());

        client.Register(interface);
        Failure* const failures[] = {&client.settings.failure, &client.logger.failure,
            &client.uiLoader.failure, &client.messageBox.failure, &client.communication.failure,
            &client.renderCore.failure, &client.configuration.failure, &client.previewer.failure};
        Failure& failure = *failures[&Row(siblings) - siblings];
        failure = Failure::Initialize;
        QCOMPARE(client.Initialize(), -1);
        QCOMPARE(MessageCapture::Take(), report);
        failure = Failure::None;
        QCOMPARE(client.Initialize(), 0);
        QCOMPARE(MessageCapture::Take(), QStringList());
    }

    void survivesAnExceptionAndAFailingShow()
    {
        Client client;
        client.Start();
        const MessageCapture capture;
        for (const Failure failure : {Failure::Exception, Failure::Show}) {
            client.communication.failure = failure;
            QCOMPARE(client.Initialize(), -1);
            QVERIFY(client.renderCore.calls.isEmpty());
        }
        client.communication.failure = Failure::None;
        QVERIFY(client.Open());
    }

    void takesTheOtherApplicationsAlong()
    {
        Client client;
        client.application.failure = Failure::Show;
        QVERIFY(client.Open());
        QCOMPARE(client.application.calls, (QStringList {"Initialize"_s, "Show"_s}));
        const auto* icon = client.Window()->findChild<QSystemTrayIcon*>();
        QVERIFY(icon);
        QVERIFY(!icon->isVisible());
        QCOMPARE(client.Service()->Activate(1, {}), 0);
        QCOMPARE(client.application.calls.last(), "Activate 1"_s);
        QVERIFY(icon->isVisible());
    }
};

QTEST_MAIN(TestPluginService)
#include "tst_plugin_service.moc"
