#include "tests/standins/client_test.h"
#include "tests/support/waiting.h"

namespace {

enum Column { Name };

QVariantMap MakeDownload(
    const QString& destination, int status = 1, int progress = 30, const QString& message = "<i>msg</i>"_s)
{
    return {{"destFile"_s, destination}, {"srcFile"_s, "farm/frame.png"_s}, {"jobId"_s, "id-1"_s},
        {"status"_s, status}, {"progress"_s, progress}, {"msg"_s, message}};
}

} // namespace

/// A render core that knows the order of its downloads, or gives a wrong id.
class OrderedRenderCore : public RenderCoreStandIn
{
    Q_OBJECT

public:
    Q_INVOKABLE QString DownloadTaskIdAt(int index)
    {
        asked.append(index);
        const QStringList ids = downloads.keys();
        return isWrong ? "none"_s : ids.value(index);
    }

    bool isWrong = false;
    QVector<int> asked;
};

/// Records the addresses that the desktop is asked to open.
class OpenedUrls : public QObject
{
    Q_OBJECT

public:
    QStringList urls;

public slots:
    void Open(const QUrl& url) { urls.append(url.toString()); }
};

/// The downloads, and the account's switches for them.
class TestPluginDownloads : public ClientTest
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        // The file manager of whoever runs the test is not asked.
        qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
    }

    void AsksWhereAPageOfDownloadsBegins_data()
    {
        QTest::addColumn<bool>("isWrong");
        QTest::newRow("known") << false;
        QTest::newRow("wrong id") << true;
    }
    void AsksWhereAPageOfDownloadsBegins()
    {
        OrderedRenderCore core;
        QFETCH(bool, isWrong);
        core.isWrong = isWrong;
        for (int number = 1; number <= 40; ++number)
            core.downloads.insert(Numbered("d"_s, number), MakeDownload("f"_s));
        m_client.reset();
        m_client = std::make_unique<Client>();
        m_client->leftOut = QStringList {"VTRenderCoreInterface"_s};
        m_client->Start();
        m_client->Context()->registerService({"VTRenderCoreInterface"_s}, &core);
        QVERIFY(m_client->Open());
        m_client->Tabs()->setCurrentIndex(2);
        emit core.DownloadListChanged();
        m_client->Button("btnNextPage"_s)->click();
        QCOMPARE(core.asked.value(core.asked.size() - 1), 18);
        QCOMPARE(Downloads()->item(0, Name)->data(Qt::UserRole).toString(), "d19"_s);
        m_client.reset();
    }

    void ShowsTheLiveMapOfDownloads()
    {
        RenderCore().downloads = {{"d1"_s, MakeDownload("/out//shot/frame.1.png"_s)}, {"d2"_s, "no map"_s},
            {"d3"_s, MakeDownload(QString(), 17, 150)}, {"d4"_s, MakeDownload("b"_s)}};
        m_client->Tabs()->setCurrentIndex(2);
        QCOMPARE(Cells(Downloads(), 0),
            "frame.1.png|d1, farm/frame.png|id-1, /out//shot/frame.1.png|, 30%, Downloading|1, |"_s);
        QCOMPARE(Checks(Downloads()), "----"_s);
        QVERIFY(Downloads()->item(0, 4)->toolTip().contains("&lt;i&gt;msg"_s));
        RenderCore().downloads.remove("d4"_s);
        RenderCore().downloads["d1"_s] = MakeDownload("a"_s, 2, 100, "new"_s);
        QVERIFY(m_client->Tick(1000));
        QCOMPARE(Values(Downloads(), 4).join(","_s), "Finished,Waiting,Unkown,Downloading"_s);
        QCOMPARE(Downloads()->item(0, 4)->toolTip(), "new"_s);
        QVERIFY(Bar(Downloads(), 0)->styleSheet().contains("rgb(125,180,75)"_s));
    }

    void FindsItsPlaceAgainWhenTasksComeAndGo()
    {
        for (const bool isTold : {true, false}) {
            init();
            AddDownloads(60);
            m_client->Tabs()->setCurrentIndex(2);
            m_client->Button("btnPageTwo"_s)->click();
            RenderCore().downloads.remove("d20"_s);
            RenderCore().downloads.insert("d00a"_s, MakeDownload("a"_s));
            if (isTold)
                emit RenderCore().DownloadListChanged();
            else
                QVERIFY(m_client->Tick(1000));
            m_client->Button("btnPageThree"_s)->click();
            QCOMPARE(Downloads()->item(0, 0)->data(Qt::UserRole).toString(), "d36"_s);
        }
    }

    void CountsInTheBackground()
    {
        SignInWithJobs(MakeJobs(1), 1);
        AddDownloads(37);
        QCOMPARE(m_client->Tabs()->currentIndex(), 0);
        QVERIFY(!m_client->Shows("btnPageTwo"_s));
        m_client->Tabs()->setCurrentIndex(2);
        QVERIFY(m_client->Shows("btnPageThree"_s));
    }

    void DeletesAndRedownloadsWhatIsChecked()
    {
        AddDownloads(20);
        m_client->Tabs()->setCurrentIndex(2);
        m_client->Button("btnPageTwo"_s)->click();
        m_client->Entry("Redownload")->trigger();
        Check(Downloads(), {0, 1});
        m_client->Entry("Redownload")->trigger();
        MessageBox().answer = MessageBoxStandIn::Consent();
        for (const char* button : {"btnDelete", "btnPause", "btnRecover"})
            m_client->Button(QLatin1String(button))->click();
        QCOMPARE(TakeJournal(),
            "RedownloadTasks , RedownloadTasks d18,d19, ShowMessage, RemoveDownloadTasks d18,d19"_s);
        QCOMPARE(Downloads()->rowCount(), 18);
        QVERIFY(m_client->Call("ClickedCell", 0, 1));
        QCOMPARE(MenuOf(Downloads()), "Open file path,Redownload"_s);
    }

    void OpensTheFolderOfTheCurrentFile()
    {
        OpenedUrls opened;
        QDesktopServices::setUrlHandler("file"_s, &opened, "Open");
        RenderCore().downloads
            = {{"d1"_s, MakeDownload("/out//shot/frame.png"_s)}, {"d2"_s, MakeDownload(QString())}};
        m_client->Tabs()->setCurrentIndex(2);
        for (const int row : {-1, 1, 0}) {
            Downloads()->setCurrentCell(row, 0);
            m_client->Entry("Open file path")->trigger();
        }
        EVENTUALLY(!opened.urls.isEmpty());
        QDesktopServices::unsetUrlHandler("file"_s);
        QCOMPARE(opened.urls, QStringList("file:///out/shot"_s));
    }

    void FollowsTheSwitchesOfTheAccount()
    {
        const char* const finish = SIGNAL(DownloadFinish(QString));
        for (const char* name : {"popupfinish", "soundfinish", "autodownload"}) {
            init();
            const QString key = "vtr.account.ann/%1"_s.arg(QLatin1String(name));
            Settings().insert(key, true);
            emit m_client->settings.SettingsUpdated();
            m_client->SignIn();
            QCOMPARE(RenderCore().receivers(finish), key.endsWith("finish"_s) ? 1 : 0);
            TakeJournal();
            emit RenderCore().DownloadFinish("frame.png"_s);
            QCOMPARE(TakeJournal(), key.endsWith("soundfinish"_s) ? "Finish frame.png"_s : QString());
            Settings().insert(key, false);
            emit m_client->settings.SettingsUpdated();
            QCOMPARE(RenderCore().receivers(finish), 0);
        }
    }

private:
    void AddDownloads(int count) const
    {
        for (int i = 0; i < count; ++i)
            RenderCore().downloads.insert(Numbered("d"_s, i), MakeDownload("a"_s));
        emit RenderCore().DownloadListChanged();
    }
};

QTEST_MAIN(TestPluginDownloads)
#include "tst_plugin_downloads.moc"
