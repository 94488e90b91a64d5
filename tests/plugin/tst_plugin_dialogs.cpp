#include "client_test.h"

#include <QAction>
#include <QLineEdit>
#include <QListWidget>

/// The dialogs in the window's hands: what they ask for reaches the services, and the answers reach them.
class TestPluginDialogs : public ClientTest
{
    Q_OBJECT

private slots:
    void searches()
    {
        const QWidget* form = m_client->uiLoader.Form("com.vtr.search"_s);
        form->findChild<QLineEdit*>("lneJobName"_s)->setText("shot"_s);
        form->findChild<QPushButton*>("btnSearchJob"_s)->click();
        QVERIFY(Conditions().contains("shot"_s));
    }

    void filtersByStatus()
    {
        SignInWithJobs(MakeJobs(2), 2);
        auto* list = m_client->Form()->findChildren<QListWidget*>().value(0);
        QVERIFY(list);
        emit list->itemClicked(list->item(0));
        QCOMPARE(TakeJournal(), QStringList {"GetJobList"_s});
        QVERIFY(Conditions().contains("status"_s));
        emit list->itemClicked(list->item(2));
        QCOMPARE(Conditions(), QString());
    }

    void letsAJobWaitForAnother()
    {
        SignInWithJobs(MakeJobs(2), 2);
        m_client->Table("twtMyRender"_s)->item(0, 0)->setCheckState(Qt::Checked);
        QWidget* form = m_client->uiLoader.Form("com.vtr.setparent"_s);
        QTimer::singleShot(0, form, [this, form] {
            Communication().DeliverJobs({MakeJob(8)}, 1, Communication().Last().map.value("identifier"_s));
            form->findChild<QTableWidget*>()->item(0, 0)->setCheckState(Qt::Checked);
            form->findChild<QPushButton*>("btnOkSetParent"_s)->click();
        });
        m_client->Entry("Set parent")->trigger();
        QCOMPARE(TakeJournal(), (QStringList {"GetJobList"_s, "StopJobs"_s}));
        const QVariantHash son {{"username"_s, "ann"_s}, {"token"_s, "token-ann"_s}, {"id[0]"_s, "id-1"_s}};
        QCOMPARE(Communication().Last().map, son);
        QTRY_COMPARE(Communication().Last().operation, "GetJobInfo"_s);
        QCOMPARE(Communication().Last().map.value("jobId"_s), QVariant("id-8"_s));
        const QVariantMap finished {{"jobDatas"_s, QVariantMap {{"jobStatus"_s, 4}}}};
        emit Communication().JobInfoResponse(
            200, {{"jobId"_s, "id-8"_s}, {"identifier"_s, 1}, {"data"_s, finished}});
        QCOMPARE(Communication().Last().operation, "RecoverJobs"_s);
        QCOMPARE(Communication().Last().map, son);
    }

    void editsATasksArguments()
    {
        const QVariantMap range {{"startFrame_0"_s, 1}, {"endFrame_0"_s, 9}};
        RenderCore().tasks.insert("t1"_s, {"a.ma"_s, {}, {}, {}, 3, 0, 0, {range}});
        emit RenderCore().SubmitListChanged();
        QVERIFY(m_client->Tick(1000));
        m_client->Table("twtLocalTask"_s)->setCurrentCell(0, 0);
        const QWidget* form = m_client->uiLoader.Form("com.vtr.setargument"_s);
        QTimer::singleShot(0, form->findChild<QPushButton*>("btnOk"_s), &QPushButton::click);
        m_client->Entry("Set argument")->trigger();
        QCOMPARE(TakeJournal(), QStringList {"SetArgument t1"_s});
    }

private:
    QString Conditions() const { return Communication().Last().map.value("conditions"_s).toString(); }
};

QTEST_MAIN(TestPluginDialogs)
#include "tst_plugin_dialogs.moc"
