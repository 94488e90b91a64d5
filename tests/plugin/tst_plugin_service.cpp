#include "tests/standins/client_test.h"

#include <ctkPluginActivator.h>
#include <ctkPluginContext.h>

namespace {

/// Interface and module.
const std::tuple<const char*, const char*> Services[]
    = {{"VTSettingsInterface", "settings"}, {"VTLoggerInterface", "logger"},
        {"VTUiLoaderInterface", "uiloader"}, {"VTMessagboxInterface", "messagebox"},
        {"VTCommunicationInterface", "communication"}, {"VTRenderCoreInterface", "rendercore"},
        {"VTConfigurationInterface", "configuration"}, {"VTPreviewerInterface", "previewer"}};

const QPair<const char*, const char*> Buttons[] = {{"btnSystemClose", "ShowMessage"},
    {"btnSettings", "ShowConf"}, {"btnFullRender", "FullRender"}, {"btnDelete", "ShowMessage"},
    {"btnRecover", "RecoverJobs"}, {"btnPause", "StopJobs"}, {"btnRestart", "RestartJobs"}};

const QString FormKeys
    = "com.vtr.qsclient com.vtr.setargument com.vtr.setparent com.vtr.search com.vtr.inputdialog"_s;

} // namespace

/// The plugin file and its service object: metadata, life cycle, status codes, and the wiring of services and form.
class TestPluginService : public ClientTest
{
    Q_OBJECT

private slots:
    void init() { m_client = std::make_unique<Client>(); }

    void CarriesItsMetadata()
    {
        QPluginLoader loader(QStringLiteral(PLUGIN_FILE));
        QCOMPARE(loader.metaData().value("IID"_s).toString(), "com.vtr.qsclient"_s);
        QCOMPARE(loader.metaData().value("className"_s).toString(), "VTQsClientPlugin"_s);
    }

    void StopsWithoutATraceAndStartsAgain()
    {
        const int widgets = QApplication::allWidgets().size();
        for (int round = 1; round <= 3; ++round) {
            m_client->Start();
            QVERIFY(m_client->Open());
            m_client->SignIn();
            m_client->Stop();
            QCOMPARE(QApplication::allWidgets().size(), widgets);
            QCOMPARE(Communication().receivers(SIGNAL(JobListResponse(int, QVariantMap))), 0);
            QCOMPARE(m_client->uiLoader.trayMenu.actions().size(), 2);
            QCOMPARE(m_client->settings.calls.count("Uninitialize"_s), round);
        }
    }

    void LeavesItsWindowToTheGuiThreadWhenStoppedOnAnother()
    {
        QPluginLoader loader(QStringLiteral(PLUGIN_FILE));
        auto* activator = qobject_cast<ctkPluginActivator*>(loader.instance());
        for (const bool startsAtOnce : {false, true}) {
            QVERIFY(m_client->Open());
            SignInWithJobs(MakeJobs(3), 3);
            const QPointer<QWidget> window = m_client->Window();
            const QThread* deletedOn = nullptr;
            connect(
                window, &QObject::destroyed, window, [&deletedOn] { deletedOn = QThread::currentThread(); },
                Qt::DirectConnection);

            StopOnAnotherThread(activator); // no event loop runs here meanwhile
            QVERIFY(window);

            if (!startsAtOnce)
                QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            m_client->Stop();
            m_client->Start();
            QVERIFY(!window && m_client->Window());
            QCOMPARE(deletedOn, thread());
        }
    }

    void OutlivesAStopFromInsideItsOperations()
    {
        QPluginLoader loader(QStringLiteral(PLUGIN_FILE));
        auto* activator = qobject_cast<ctkPluginActivator*>(loader.instance());
        using Case = std::pair<QEvent::Type, bool>;
        for (const auto& [event, onThread] :
            {Case(QEvent::Show, false), Case(QEvent::Hide, false), Case(QEvent::Show, true)}) {
            init();
            m_client->Start();
            QCOMPARE(m_client->Initialize(), 0);
            bool isStopped = false;
            m_client->renderCore.awaitedEvent = event;
            m_client->renderCore.onEvent = [&, onThread = onThread] {
                if (onThread) {
                    StopOnAnotherThread(activator);
                    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
                } else {
                    m_client->Stop();
                }
                QVERIFY(Communication().receivers(SIGNAL(SignInResponse(int, QVariantMap))) == 0);
                isStopped = true;
            };
            VTBaseInterface* service = m_client->Service();
            QVariant state;
            QCOMPARE(service->Show(state, {}), 0);
            if (!isStopped)
                QCOMPARE(service->Hide(1), 0);
            QVERIFY(isStopped && !m_client->Window());
            m_client->Stop();
            m_client->Start();
            QVERIFY(m_client->Open());
        }
    }

    void AnswersWithItsStatusCodes()
    {
        m_client->Start();
        VTBaseInterface& service = *m_client->Service();
        QVariant state;
        QCOMPARE(service.Show(state, {}), -3);
        QCOMPARE(Codes(1), "-3 -3 -3"_s);
        QCOMPARE(service.Initialize({}), -1);
        QCOMPARE(service.Uninitialize(), 0);
        QCOMPARE(m_client->Initialize(), 0);
        QCOMPARE(m_client->Initialize(), 0);
        QCOMPARE(m_client->settings.calls, (QStringList {"Initialize"_s, "Show"_s}));
        for (const QVariant& request : {QVariant(), QVariant(2)})
            QCOMPARE(Codes(request), "-4 -4 -4"_s);
        QVERIFY(!m_client->Form()->isVisible());
    }

    void ShowsOnceAndClosesIntoTheTray()
    {
        QVERIFY(m_client->Open());
        QCOMPARE(m_client->uiLoader.loadedKeys.join(" "_s), FormKeys);
        QVERIFY(!QGuiApplication::quitOnLastWindowClosed());
        m_client->Form()->hide();
        QVariant state;
        QCOMPARE(m_client->Service()->Show(state, {}), 0);
        QCOMPARE(state, QVariant(1));
        QVERIFY(!m_client->Form()->isVisible());
        const auto* icon = m_client->Window()->findChild<QSystemTrayIcon*>();
        QVERIFY(!icon->isVisible());
        QCOMPARE(m_client->Service()->Activate(1, {}), 0);
        QVERIFY(icon->isVisible());
        QCOMPARE(m_client->Service()->Close(1), 0);
        QVERIFY(m_client->Window());
    }

    void HidesForGoodAndIsHarmlessAfterwards()
    {
        m_client->Start();
        CallEverySlot(m_client->Window());
        QVERIFY(m_client->Open());
        m_client->SignIn();
        const QPointer<QWidget> form = m_client->Form();
        QCOMPARE(m_client->Service()->Hide("1"_s), 0);
        QVERIFY(!m_client->Window());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!form);

        QVariant state;
        QCOMPARE(m_client->Service()->Show(state, {}), 0);
        TakeJournal();
        CallEverySlot(m_client->Window());
        Communication().DeliverJobs(MakeJobs(3), 3);
        QCOMPARE(Codes(1), "0 0 0"_s);
        QCOMPARE(TakeJournal(), QString());
    }

    void SurvivesTheEndOfItsForms()
    {
        const QPair<const char*, const char*> forms[] = {{"qsclient", ""}, {"setargument", "VTSetArgument"},
            {"setparent", "VTSetParent"}, {"search", "VTSearch"}, {"inputdialog", "VTGroup"}};
        for (const auto& [form, controller] : forms) {
            init();
            QVERIFY(m_client->Open());
            m_client->SignIn();
            delete Form(form);
            QCOMPARE(m_client->RunningTimers(15000).size(), *controller ? 1 : 0);
            emit m_client->uiLoader.SkinChanged("teal"_s);
            emit m_client->uiLoader.LanguageChanged("vtr_de.qm"_s);
            Communication().DeliverJobs(MakeJobs(3), 3, 1);
            emit Communication().SignOutResponse(200, {});
            CallEverySlot(*controller ? m_client->controllers.Find(controller) : m_client->Window());
            QVERIFY(MessageBox().messages.isEmpty());
            QCOMPARE(m_client->Service()->Uninitialize(), 0);
        }
    }

    void ReportsAServiceThatIsMissingOrFails_data() { AddRows(Services); }
    void ReportsAServiceThatIsMissingOrFails()
    {
        const auto& service = Row(Services);
        const auto& [name, module] = service;
        const QString interface = QLatin1String(name);
        const QtMsgType level = interface.contains("Ui"_s) ? QtDebugMsg : QtCriticalMsg;
        const QRegularExpression report("Module com.vtr.%1 is invalid"_s.arg(QLatin1String(module)));
        m_client->leftOut = QStringList {interface};
        m_client->Start();
        QTest::ignoreMessage(level, report);
        QCOMPARE(m_client->Initialize(), -1);
        QVERIFY(m_client->uiLoader.loadedKeys.isEmpty());

        m_client->Register(interface);
        Failure* const failures[] = {&m_client->settings.failure, &m_client->logger.failure,
            &m_client->uiLoader.failure, &MessageBox().failure, &Communication().failure,
            &RenderCore().failure, &m_client->configuration.failure, &m_client->previewer.failure};
        Failure& failure = *failures[&service - Services];
        failure = Failure::Initialize;
        QTest::ignoreMessage(level, report);
        QCOMPARE(m_client->Initialize(), -1);
        failure = Failure::None;
        QCOMPARE(m_client->Initialize(), 0);
    }

    void StartsTheHostsOtherApplications()
    {
        ApplicationStandIn applications[3];
        applications[0].failure = Failure::Initialize;
        applications[1].failure = Failure::Throws;
        m_client->Start();
        for (ApplicationStandIn& application : applications)
            m_client->Context()->registerService({"VTBaseAppInterface"_s}, &application);
        QTest::ignoreMessage(QtWarningMsg, "An application of the host failed: the stand-in throws");
        QVERIFY(m_client->Open());
        QCOMPARE(m_client->Service()->Activate(1, {}), 0);
        for (const ApplicationStandIn& application : applications) {
            const QString start = application.failure == Failure::Throws ? "Initialize,Activate 1"_s
                                                                         : "Initialize,Show,Activate 1"_s;
            QCOMPARE(application.calls.join(","_s), start);
        }
        m_client.reset();
    }

    void OutlivesAServiceThatThrows()
    {
        m_client->renderCore.failure = Failure::Throws;
        m_client->Start();
        QTest::ignoreMessage(
            QtCriticalMsg, QRegularExpression("could not be attached: the stand-in throws$"_s));
        QCOMPARE(m_client->Initialize(), -1);
        m_client->renderCore.failure = Failure::None;
        QVERIFY(m_client->Open());
    }

    void ListensOnceWhateverHappenedBefore()
    {
        m_client->leftOut = QStringList {"VTPreviewerInterface"_s};
        m_client->Start();
        QCOMPARE(m_client->Initialize(), -1);
        m_client->Register("VTPreviewerInterface"_s);
        for (const Failure failure : {Failure::Show, Failure::None}) {
            Communication().failure = failure;
            QCOMPARE(m_client->Initialize(), failure == Failure::None ? 0 : -1);
        }
        for (int round = 0; round < 2; ++round) {
            QVERIFY(m_client->Open());
            CheckReceivers(Communication(), {});
            CheckReceivers(RenderCore(), {{"DownloadFinish(QString)", 0}});
            CheckReceivers(m_client->settings, {});
            CheckReceivers(m_client->uiLoader, {{"ShowWindow(QString)", 2}});
            SignInWithJobs(MakeJobs(1), 1);
            QCOMPARE(Jobs()->rowCount(), 1);
            m_client->settings.calls.clear();
            QCOMPARE(m_client->Service()->Uninitialize(), 0);
            QVERIFY(!m_client->Window());
            QCOMPARE(m_client->settings.calls, (QStringList {"Hide 7"_s, "Uninitialize"_s}));
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
    }

    void ConnectsItsForm()
    {
        QVERIFY(m_client->Open());
        for (const auto& [button, effect] : Buttons) {
            m_client->Button(QLatin1String(button))->click();
            QVERIFY2(TakeJournal() == QLatin1String(effect), button);
        }
        QMimeData files;
        QDragEnterEvent drag(QPoint(), Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(m_client->Form(), &drag);
        QVERIFY(RenderCore().seenEvents.contains(QEvent::DragEnter));
        QVERIFY(m_client->Form()->acceptDrops() && m_client->Window()->acceptDrops());
        m_client->Button("btnSearch"_s)->click();
        QVERIFY(Form("search")->isVisible());
        emit Communication().SignOutResponse(500, {});
        QVERIFY(!Form("search")->isVisible());
    }

    void LooksForTheWidgetsOfTheInstalledRoster()
    {
        static QStringList lookedFor;
        m_client->uiLoader.leftOut = QStringList {"*"_s};
        m_client->Start();
        const auto previous
            = qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& text) {
                  static const QRegularExpression complaint("^Form (\\S+) has no (\\S+ \\S+)$"_s);
                  const QRegularExpressionMatch match = complaint.match(text);
                  if (match.hasMatch())
                      lookedFor.append("%1 %2"_s.arg(match.captured(1), match.captured(2)));
              });
        m_client->Initialize();
        qInstallMessageHandler(previous);
        lookedFor.sort();
        QFile roster(QStringLiteral(ROSTER_FILE));
        QVERIFY(roster.open(QIODevice::ReadOnly));
        QCOMPARE(lookedFor, QString::fromUtf8(roster.readAll()).trimmed().split("\n"_s));
    }

    void LogsMissingWidgetsAndFormsAndWorksOn()
    {
        const std::tuple<QStringList, QStringList, int> lacks[]
            = {{{"*"_s}, {}, 50}, {{"twtMyRender"_s}, {}, 1}, {{}, FormKeys.split(" "_s), 5}};
        for (const auto& [widgets, forms, complaints] : lacks) {
            init();
            m_client->uiLoader.leftOut = widgets;
            m_client->uiLoader.missingForms = forms;
            m_client->Start();
            for (int i = 0; i < complaints; ++i)
                QTest::ignoreMessage(QtCriticalMsg, QRegularExpression("^Form com.vtr."_s));
            QCOMPARE(m_client->Initialize(), 0);
            QVariant state;
            QCOMPARE(m_client->Service()->Show(state, {}), 0);
            SignInWithJobs(MakeJobs(3), 40);
            emit RenderCore().SubmitListChanged();
            emit RenderCore().DownloadListChanged();
            for (const int tab : {0, 1, 2, 3, -1})
                QVERIFY(m_client->Call("ChangeTab", tab));
            CallEverySlot(m_client->Window());
            emit Communication().SignOutResponse(200, {});
        }
    }

private:
    static void StopOnAnotherThread(ctkPluginActivator* activator)
    {
        const std::unique_ptr<QThread> other(QThread::create([activator] { activator->stop(nullptr); }));
        other->start();
        QVERIFY(other->wait(30000));
    }

    /// Calls every slot of an object's own class that takes no arguments.
    static void CallEverySlot(QObject* object)
    {
        const QMetaObject* type = object->metaObject();
        for (int i = type->methodOffset(); i < type->methodCount(); ++i) {
            const QMetaMethod method = type->method(i);
            if (method.methodType() == QMetaMethod::Slot && method.parameterCount() == 0)
                method.invoke(object, Qt::DirectConnection);
        }
    }

    /// The service's answers to the three operations that take a request.
    QString Codes(const QVariant& request) const
    {
        VTBaseInterface& service = *m_client->Service();
        return "%1 %2 %3"_s.arg(service.Activate(request, {}))
            .arg(service.Close(request))
            .arg(service.Hide(request));
    }

    /// Checks how many connections each signal of a service has: one unless `exceptions` says otherwise.
    template <class StandIn>
    static void CheckReceivers(const StandIn& service, const QMap<QByteArray, int>& exceptions)
    {
        const QMetaObject* type = service.metaObject()->superClass();
        for (int i = type->methodOffset(); i < type->methodCount(); ++i) {
            const QByteArray signature = type->method(i).methodSignature();
            if (type->method(i).methodType() == QMetaMethod::Signal)
                QVERIFY2(service.receivers(QByteArray("2" + signature)) == exceptions.value(signature, 1),
                    signature);
        }
    }
};

QTEST_MAIN(TestPluginService)
#include "tst_plugin_service.moc"
