#include "client_test.h"

#include <QTemporaryDir>

namespace {

QVariantMap MakeDownload(const QString& destination, int status = 1, int progress = 30)
{
    return {{"destFile"_s, destination}, {"srcFile"_s, "farm/frame.png"_s}, {"jobId"_s, "id-1"_s},
        {"status"_s, status}, {"progress"_s, progress}, {"msg"_s, "<i>msg</i>"_s}};
}

struct Switch
{
    const char* name;
    int receivers; ///< of the finish notice, while it is on
    QString effect;
};
const Switch switches[]
    = {{"popupfinish", 1, {}}, {"soundfinish", 1, "Finish frame.png"_s}, {"autodownload", 0, {}}};

} // namespace

/// The downloads and the switches of the account that bear on them.
class TestPluginDownloads : public ClientTest
{
    Q_OBJECT

private slots:
    void showsAPageOfDownloads()
    {
        RenderCore().downloads = {{"d1"_s, MakeDownload("/out//shot/frame.1.png"_s)}, {"d2"_s, "no map"_s},
            {"d3"_s, MakeDownload(QString(), 17, 150)}};
        m_client->Tabs()->setCurrentIndex(2);
        QCOMPARE(Cells(Downloads(), 0),
            "frame.1.png|d1, farm/frame.png|id-1, /out//shot/frame.1.png|, Downloading|1, |"_s);
        QCOMPARE(Downloads()->item(0, 0)->data(Qt::CheckStateRole), QVariant(Qt::Unchecked));
        QCOMPARE(Downloads()->item(0, 4)->textAlignment(), 132);
        QVERIFY(Downloads()->item(0, 4)->toolTip().contains("&lt;i&gt;msg"_s));
        QCOMPARE(Bar(Downloads(), 0)->value(), 30);
        QCOMPARE(Downloads()->item(1, 4)->text(), "Waiting"_s);
        QCOMPARE(Downloads()->item(2, 4)->text(), "Unkown"_s);
        QCOMPARE(Bar(Downloads(), 2)->styleSheet(), QString());
    }

    void refreshesFromTheLiveMap()
    {
        RenderCore().downloads = {{"d1"_s, MakeDownload("a"_s)}, {"d2"_s, MakeDownload("b"_s)}};
        m_client->Tabs()->setCurrentIndex(2);
        RenderCore().downloads.remove("d2"_s);
        RenderCore().downloads["d1"_s] = MakeDownload("a"_s, 2, 100);
        QVERIFY(m_client->Tick(1000));
        QCOMPARE(Downloads()->item(0, 4)->text(), "Finished"_s);
        QCOMPARE(Bar(Downloads(), 0)->value(), 100);
        QVERIFY(Bar(Downloads(), 0)->styleSheet().contains("rgb(125,180,75)"_s));
        QCOMPARE(Downloads()->item(1, 4)->text(), "Downloading"_s);
    }

    void onlyCountsBehindAnotherTab()
    {
        SignInWithJobs(MakeJobs(1), 1);
        AddDownloads(20);
        QCOMPARE(m_client->Tabs()->currentIndex(), 0);
        QCOMPARE(Downloads()->rowCount(), 0);
        QVERIFY(!m_client->Shows("btnPageTwo"_s));
        QCOMPARE(m_client->RunningTimers(1000).size(), 1);
        m_client->Tabs()->setCurrentIndex(2);
        QVERIFY(m_client->Shows("btnPageTwo"_s));
        QCOMPARE(Downloads()->rowCount(), 18);
    }

    void deletesAndRedownloadsWhatIsChecked()
    {
        m_client->Tabs()->setCurrentIndex(2);
        AddDownloads(20);
        m_client->Button("btnNextPage"_s)->click();
        m_client->Entry("Redownload")->trigger();
        for (const int row : {0, 1})
            Downloads()->item(row, 0)->setCheckState(Qt::Checked);
        m_client->Entry("Redownload")->trigger();
        MessageBox().answer = MessageBoxStandIn::Consent();
        for (const char* button : {"btnDelete", "btnPause", "btnRecover"})
            m_client->Button(QLatin1String(button))->click();
        QCOMPARE(TakeJournal(),
            (QStringList {"RedownloadTasks "_s, "RedownloadTasks d18,d19"_s, "ShowMessage"_s,
                "RemoveDownloadTasks d18,d19"_s}));
        QCOMPARE(Downloads()->rowCount(), 18);
        QCOMPARE(Downloads()->item(0, 0)->data(Qt::UserRole).toString(), "d00"_s);
        QVERIFY(!m_client->Shows("btnPageTwo"_s));
    }

    void revealsTheFileOfTheCurrentRow()
    {
        // The file manager of this test writes down what it was asked for.
        const QTemporaryDir folder;
        const QString note = folder.filePath("note"_s);
        QFile program(folder.filePath("explorer.exe"_s));
        QVERIFY(program.open(QIODevice::WriteOnly));
        program.write(
            "#!/bin/sh\nprintf '%%s|%%s|%%s' $# \"$1\" \"$2\" > %1.new && mv %1.new %1\n"_s.arg(note)
                .replace("%%"_s, "%"_s)
                .toUtf8());
        program.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        program.close();
        const QByteArray path = qgetenv("PATH");
        qputenv("PATH", folder.path().toUtf8() + ":" + path);

        QVERIFY(m_client->Call("OpenFilePosition"));
        RenderCore().downloads = {{"d1"_s, MakeDownload("/out//a b/c;d.png"_s)}};
        m_client->Tabs()->setCurrentIndex(2);
        Downloads()->setCurrentCell(0, 0);
        m_client->Entry("Open file path")->trigger();
        QTRY_VERIFY(QFile::exists(note));
        qputenv("PATH", path);
        QFile written(note);
        QVERIFY(written.open(QIODevice::ReadOnly));
        QCOMPARE(written.readAll(), QByteArray("2|/select,|/out/a b/c;d.png"));
    }

    void followsTheSwitchesOfTheAccount_data() { AddRows(switches); }
    void followsTheSwitchesOfTheAccount()
    {
        const QString key = "vtr.account.ann/%1"_s.arg(QLatin1String(Row(switches).name));
        const char* const finish = SIGNAL(DownloadFinish(QString));
        m_client->settings.values.insert(key, true);
        emit m_client->settings.SettingsUpdated();
        QVERIFY(m_client->settings.defaults.isEmpty());

        m_client->SignIn();
        QCOMPARE(m_client->settings.defaults.value(key), QVariant(0));
        emit m_client->settings.SettingsUpdated();
        QCOMPARE(RenderCore().receivers(finish), Row(switches).receivers);
        TakeJournal();
        emit RenderCore().DownloadFinish("frame.png"_s);
        QCOMPARE(TakeJournal().join(","_s), Row(switches).effect);
        m_client->settings.values.insert(key, false);
        emit m_client->settings.SettingsUpdated();
        QCOMPARE(RenderCore().receivers(finish), 0);
    }

private:
    QTableWidget* Downloads() const { return m_client->Table("twtDownload"_s); }

    void AddDownloads(int count) const
    {
        for (int i = 0; i < count; ++i)
            RenderCore().downloads.insert(Numbered("d"_s, i), MakeDownload("a"_s));
        emit RenderCore().DownloadListChanged();
    }
};

QTEST_MAIN(TestPluginDownloads)
#include "tst_plugin_downloads.moc"
