#include "client_test.h"

#include <QCheckBox>

namespace {

struct Action
{
    const char* name; ///< operation of the communication service
    QString button;
    QByteArray answer;
    QString failure;
    bool canBeRefused;
};
const Action actions[] = {
    {"DeleteJobs", "btnDelete"_s, "DeleteJobResponse", "Delete jobs failed!"_s, false},
    {"StopJobs", "btnPause"_s, "StopJobResponse", "Stop jobs failed!"_s, false},
    {"RecoverJobs", "btnRecover"_s, "RecoverJobResponse", "Recover jobs failed!"_s, true},
    {"RestartJobs", "btnRestart"_s, "RestartJobResponse", "Restart jobs failed!"_s, true},
    {"FullRender", "btnFullRender"_s, "FullRenderResponse", "Full render jobs failed!"_s, true},
};

struct Choice
{
    const char* name;
    QList<int> checked;
    int current;
    QStringList ordered;
};
const Choice choices[] = {{"nothing", {}, -1, {}}, {"current row", {}, 2, {"id-3"_s}},
    {"checked rows win", {0, 1}, 2, {"id-1"_s, "id-2"_s}}};

} // namespace

/// What is done with the checked jobs: the toolbar's actions, the context menu and downloads by hand.
class TestPluginActions : public ClientTest
{
    Q_OBJECT

private slots:
    void sendsTheCheckedJobs_data() { AddRows(actions); }
    void sendsTheCheckedJobs()
    {
        const Action& action = Row(actions);
        SignInWithJobs(MakeJobs(12), 12);
        auto* all = m_client->Find<QCheckBox>("chkAll"_s);
        all->setChecked(true);
        Jobs()->item(1, 0)->setCheckState(Qt::Unchecked);
        MessageBox().answer = MessageBoxStandIn::Consent();
        m_client->Button(action.button)->click();
        QVariantHash request {{"username"_s, "ann"_s}, {"token"_s, "token-ann"_s}, {"id[0]"_s, "id-1"_s}};
        for (int i = 1; i < 11; ++i)
            request.insert("id[%1]"_s.arg(i), "id-%1"_s.arg(i + 2));
        QCOMPARE(Communication().Last().operation, QString::fromLatin1(action.name));
        QCOMPARE(Communication().Last().map, request);
        QCOMPARE(Communication().Last().status, QVariant(CommunicationStandIn::handedOut));
        QCOMPARE(all->isChecked(), action.button != "btnDelete"_s);
    }

    void asksBeforeItDeletes()
    {
        SignInWithJobs(MakeJobs(2), 2);
        Jobs()->item(0, 0)->setCheckState(Qt::Checked);
        for (const QString& answer : {MessageBoxStandIn::Refusal(), QString()}) {
            MessageBox().answer = answer;
            m_client->Button("btnDelete"_s)->click();
            QCOMPARE(TakeJournal(), QStringList {"ShowMessage"_s});
            QCOMPARE(MessageBox().messages.last(),
                "4|QuillStar Client||Are you sure to delete these jobs?|Cancel,Ok|0"_s);
            QCOMPARE(Jobs()->item(0, 0)->checkState(), Qt::Checked);
        }
    }

    void judgesTheAnswers_data() { AddRows(actions); }
    void judgesTheAnswers()
    {
        const Action& action = Row(actions);
        SignInWithJobs(MakeJobs(18), 40);
        m_client->Button("btnPageTwo"_s)->click();
        for (const int result : {200, 500}) {
            for (const QVariantList& refused : {QVariantList(), QVariantList {"id-1"_s}}) {
                TakeJournal();
                MessageBox().messages.clear();
                const QVariantMap data {{"data"_s, QVariantMap {{"notAllowedJobs"_s, refused}}}};
                QMetaObject::invokeMethod(
                    &Communication(), action.answer, Q_ARG(int, result), Q_ARG(QVariantMap, data));
                const bool isRefusal = action.canBeRefused && !refused.isEmpty();
                if (result == 200 && !isRefusal) {
                    QCOMPARE(TakeJournal(), QStringList {"GetJobList"_s});
                    QCOMPARE(Communication().Last().map.value("page"_s), QVariant(2));
                    continue;
                }
                const QString notice = isRefusal ? "Amount Overdue!"_s : action.failure;
                QCOMPARE(TakeJournal(), QStringList {"ShowMessage"_s});
                QCOMPARE(MessageBox().messages, QStringList {"2|QuillStar Client||%1|Ok,|1"_s.arg(notice)});
            }
        }
    }

    void opensItsMenusOncePerPress()
    {
        SignInWithJobs(MakeJobs(2), 2);
        QCOMPARE(MenuOf(Jobs()), QString());
        QVERIFY(m_client->Call("ClickedCell", 0, 1));
        QCOMPARE(MenuOf(Jobs()), "Download,Set parent"_s);
        QCOMPARE(MenuOf(Jobs()), QString());
        QVERIFY(m_client->Call("ClickedCell", 0, 1));
        QCOMPARE(MenuOf(m_client->Table("twtDownload"_s)), "Open file path,Redownload"_s);
    }

    void downloadsByHand_data() { AddRows(choices); }
    void downloadsByHand()
    {
        const Choice& choice = Row(choices);
        SignInWithJobs(MakeJobs(3), 3);
        Jobs()->setCurrentCell(choice.current, choice.current < 0 ? -1 : 0);
        for (const int row : choice.checked)
            Jobs()->item(row, 0)->setCheckState(Qt::Checked);
        m_client->Entry("Download")->trigger();
        QCOMPARE(RenderCore().orders.value(0).keys(), choice.ordered);
        QCOMPARE(MessageBox().messages.size(), choice.ordered.isEmpty() ? 0 : 1);
        if (choice.ordered.isEmpty())
            return;
        const QString number = choice.ordered.first().mid(3);
        QCOMPARE(RenderCore().orders.first().first().toMap(),
            (QVariantMap {{"jobType"_s, "type-%1"_s.arg(number)}, {"subDir"_s, "%1_name-%1"_s.arg(number)},
                {"manual"_s, 1}}));
        QVERIFY(MessageBox().messages.first().contains(
            "|The checked items are already added to download list|"_s));
        for (int row = 0; row < 3; ++row)
            QCOMPARE(Jobs()->item(row, 0)->checkState(), Qt::Unchecked);
    }

    void survivesTheEndOfItsWindowBehindAQuestion_data()
    {
        QTest::addColumn<QByteArray>("slot");
        QTest::addColumn<bool>("stops");
        for (const char* slot :
            {"Close", "DeleteJobs", "ManualDownload", "UploadRetryOption", "LackTextureOption"}) {
            QTest::addRow("%s hidden", slot) << QByteArray(slot) << false;
            QTest::addRow("%s stopped", slot) << QByteArray(slot) << true;
        }
    }
    void survivesTheEndOfItsWindowBehindAQuestion()
    {
        QFETCH(QByteArray, slot);
        QFETCH(bool, stops);
        SignInWithJobs(MakeJobs(3), 3);
        Jobs()->setCurrentCell(0, 0);
        emit RenderCore().failFile("a"_s, {});
        emit RenderCore().lackedTexture("a"_s, {});
        MessageBox().answer = MessageBoxStandIn::Consent();
        MessageBox().whileOpen = [this, stops] {
            if (stops)
                m_client->Stop();
            else
                m_client->Service()->Hide(1);
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        };
        QVERIFY(m_client->Call(slot));
        QVERIFY(!m_client->Window());
        QCOMPARE(TakeJournal(), QStringList {"ShowMessage"_s});
    }

private:
    QTableWidget* Jobs() const { return m_client->Table("twtMyRender"_s); }
};

QTEST_MAIN(TestPluginActions)
#include "tst_plugin_actions.moc"
