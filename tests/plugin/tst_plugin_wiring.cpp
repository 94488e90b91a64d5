#include "client_test.h"
#include "form_roster.h"
#include "message_capture.h"

#include <QCheckBox>

namespace {

const char* const declaredMethods[] = {"JobIdType(QVariantMap)", "showParenList(QVariantList)",
    "login(QString,QString,QString,QString)", "windowSizeChanged()", "ChangeSkin(QString)",
    "ChangeLanguage(QString)", "Close()", "ShowWindow(QString)", "LoadGlobalSettings()",
    "ShowWindowMaximized()", "ShowWindowNormal()", "TriggerSignInResponse(int,QVariantMap)",
    "TriggerSignOutResponse(int,QVariantMap)", "TriggerJobListResponse(int,QVariantMap)",
    "TriggerDeleteJobResponse(int,QVariantMap)", "TriggerUserInfoResponse(int,QVariantMap)",
    "TriggerRecoverJobsResponse(int,QVariantMap)", "TriggerStopJobsResponse(int,QVariantMap)",
    "TriggerRestartJobsResponse(int,QVariantMap)", "TriggerFullRenderResponse(int,QVariantMap)",
    "GetUserInfo()", "PageButtonClicked()", "ClickedCell(int,int)", "JobListContextMenu(QPoint)",
    "DownloadListContextMenu(QPoint)", "DeleteJobs()", "StopJobs()", "RecoverJobs()", "RestartJobs()",
    "FullRender()", "StopJobs(VTParameters)", "RecoverJobs(VTParameters)", "GetJobInfo(VTParameters)",
    "TriggerSubmitListChanged()", "TriggerDownloadListChanged()", "ChangeTab(int)",
    "TriggerTreeViewClicked(QModelIndex)", "SignOut()", "TriggerChangeLanguage()",
    "TriggerActivated(QSystemTrayIcon::ActivationReason)", "ShowDownloadTasks()", "ShowSubmitList()",
    "TriggerStateChanged(int)", "UpdateSettings()", "ManualDownload()", "eventFilter(QObject*,QEvent*)",
    "AdjustPageButtons()", "RefreshJobList()", "PopupFinish(QString)", "OpenFilePosition()",
    "TriggerFailFile(QString,QStringList)", "TriggerLackedTexture(QString,QStringList)",
    "SubmitListContextMenu(QPoint)", "UploadRetryOption()", "LackTextureOption()", "TriggerSubmit()",
    "Redownload()", "SetItemAttribute(QTableWidgetItem*,QVariant,QString,bool)",
    "SetItemAttribute(QTableWidgetItem*,QVariant,QString)", "GetANewProgressBar(int)",
    "SearchJob(QVariantMap&)", "CellDoubleClicked(int,int)", "GetJobList(int,QString,int)",
    "GetJobList(int,QString)", "GetJobList(int)", "Condition(QString)"};

struct Button
{
    const char* name;
    const char* effect;
};
const Button buttons[] = {{"btnSystemClose", "ShowMessage"}, {"btnSettings", "ShowConf"},
    {"btnFullRender", "FullRender"}, {"btnDelete", "ShowMessage"}, {"btnRecover", "RecoverJobs"},
    {"btnPause", "StopJobs"}, {"btnRestart", "RestartJobs"}, {"btnLang", "SetLanguage /lang/vtr_de.qm"},
    {"btnStop", ""}, {"btnSubmit", ""}, {"btnRecharge", ""}, {"btnMessage", ""}, {"btnSkin", ""}};

const QString formKeys
    = "com.vtr.qsclient com.vtr.search com.vtr.setargument com.vtr.setparent com.vtr.inputdialog"_s;

} // namespace

/// What siblings and form rely on: the window's signals and slots, and who is connected to what.
class TestPluginWiring : public ClientTest
{
    Q_OBJECT

private slots:
    void declaresItsMethodsInOrder()
    {
        const QMetaObject* type = m_client->Window()->metaObject();
        int method = type->methodOffset();
        for (const char* signature : declaredMethods)
            QCOMPARE(type->method(method++).methodSignature(), QByteArray(signature));
    }

    void listensToItsSiblingsOnce()
    {
        CheckSiblingConnections();
        m_client = std::make_unique<Client>();
        m_client->leftOut = QStringList {"VTPreviewerInterface"_s};
        m_client->Start();
        const MessageCapture capture;
        QCOMPARE(m_client->Initialize(), -1);
        m_client->Register("VTPreviewerInterface"_s);
        QCOMPARE(m_client->Initialize(), 0);
        m_client->Service()->Uninitialize();
        QVERIFY(m_client->Open());
        CheckSiblingConnections();
    }

    void actsOnItsButtons_data() { AddRows(buttons); }
    void actsOnItsButtons()
    {
        m_client->Button(QLatin1String(Row(buttons).name))->click();
        QCOMPARE(TakeJournal().join(","_s), QString::fromLatin1(Row(buttons).effect));
    }

    void opensTheSearchAndHidesIntoTheTray()
    {
        const QWidget* search = m_client->uiLoader.Form("com.vtr.search"_s);
        QVERIFY(!search->isVisible());
        m_client->Button("btnSearch"_s)->click();
        QVERIFY(search->isVisible());
        m_client->Button("btnSystemMin"_s)->click();
        QVERIFY(!m_client->Form()->isVisible());
        emit Communication().SignOutResponse(500, {});
        QVERIFY(!search->isVisible());
    }

    void passesTheFormsEventsToTheRenderCore()
    {
        QVERIFY(m_client->Form()->acceptDrops() && m_client->Form()->hasMouseTracking());
        QMimeData files;
        QDragEnterEvent drag(QPoint(), Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(m_client->Form(), &drag);
        QVERIFY(RenderCore().seenEvents.contains(QEvent::DragEnter));
    }

    void logsMissingWidgetsAndFormsAndWorksOn_data()
    {
        QTest::addColumn<QStringList>("widgets");
        QTest::addColumn<QStringList>("forms");
        QTest::newRow("widgets") << MainFormNames() << QStringList();
        QTest::newRow("table") << QStringList {"twtMyRender"_s} << QStringList();
        QTest::newRow("forms") << QStringList() << formKeys.split(" "_s);
    }
    void logsMissingWidgetsAndFormsAndWorksOn()
    {
        QFETCH(QStringList, widgets);
        QFETCH(QStringList, forms);
        m_client = std::make_unique<Client>();
        m_client->uiLoader.leftOut = widgets;
        m_client->uiLoader.missingForms = forms;
        m_client->Start();
        const MessageCapture capture;
        QCOMPARE(m_client->Initialize(), 0);
        const QStringList lines = MessageCapture::Take();
        for (const QString& name : widgets) {
            const QRegularExpression line(
                "^critical\\|Form com\\.vtr\\.qsclient has no Q\\w+ %1\\|"_s.arg(name));
            QCOMPARE(lines.filter(line).size(), 1);
        }
        for (const QString& key : forms)
            QCOMPARE(lines.filter("Form %1 is missing"_s.arg(key)).size(), 1);

        QVariant state;
        QCOMPARE(m_client->Service()->Show(state, {}), 0);
        SignInWithJobs(MakeJobs(3), 40);
        emit RenderCore().SubmitListChanged();
        emit RenderCore().DownloadListChanged();
        for (const int tab : {0, 1, 2, 3, -1})
            QVERIFY(m_client->Call("ChangeTab", tab));
        for (const char* slot : {"AdjustPageButtons", "ShowWindowMaximized", "ShowWindowNormal", "DeleteJobs",
                 "RecoverJobs", "ManualDownload", "TriggerSubmit", "Redownload", "SignOut"})
            QVERIFY(m_client->Call(slot));
        emit Communication().SignOutResponse(200, {});
    }

private:
    void CheckSiblingConnections() const
    {
        for (const char* signal : {SIGNAL(SignInResponse(int, QVariantMap)),
                 SIGNAL(JobListResponse(int, QVariantMap)), SIGNAL(DeleteJobResponse(int, QVariantMap)),
                 SIGNAL(UserInfoResponse(int, QVariantMap)), SIGNAL(SignOutResponse(int, QVariantMap)),
                 SIGNAL(RecoverJobResponse(int, QVariantMap)), SIGNAL(RestartJobResponse(int, QVariantMap)),
                 SIGNAL(StopJobResponse(int, QVariantMap)), SIGNAL(FullRenderResponse(int, QVariantMap)),
                 SIGNAL(JobInfoResponse(int, QVariantMap)), SIGNAL(ProjectListResponse(int, QVariantMap))})
            QVERIFY2(Communication().receivers(signal) == 1, signal);
        for (const char* signal : {SIGNAL(SubmitListChanged()), SIGNAL(DownloadListChanged()),
                 SIGNAL(failFile(QString, QStringList)), SIGNAL(lackedTexture(QString, QStringList))})
            QVERIFY2(RenderCore().receivers(signal) == 1, signal);
        QCOMPARE(RenderCore().receivers(SIGNAL(DownloadFinish(QString))), 0);
        QCOMPARE(m_client->settings.receivers(SIGNAL(SettingsUpdated())), 1);
        QCOMPARE(m_client->uiLoader.receivers(SIGNAL(SkinChanged(QString))), 1);
        QCOMPARE(m_client->uiLoader.receivers(SIGNAL(LanguageChanged(QString))), 1);
        QCOMPARE(m_client->uiLoader.receivers(SIGNAL(ShowWindow(QString))), 2);
    }
};

QTEST_MAIN(TestPluginWiring)
#include "tst_plugin_wiring.moc"
