#include "tests/standins/client_test.h"

namespace {

/// Tables by tab.
const char* const Tables[] = {"twtMyRender", "twtLocalTask", "twtDownload"};

/// Requests of a sign-in, from inside which a later event ends the session or the window.
const std::tuple<const char*, int, bool> Interruptions[] = {{"sign-out in the user info", 0, true},
    {"sign-out in the job list", 1, true}, {"sign-out in the projects", 2, true},
    {"end in the user info", 0, false}, {"end in the job list", 1, false}, {"end in the projects", 2, false}};

} // namespace

/// Lists that are refilled, and calls that come back, while the user or the window is in the middle of something.
class TestPluginRefills : public ClientTest
{
    Q_OBJECT

private slots:
    void KeepsTheUsersMarks_data() { AddTabs(); }
    void KeepsTheUsersMarks()
    {
        QFETCH(int, tab);
        OpenTab(tab);
        QTableWidget* table = Table(tab);
        QCOMPARE(Checks(table), "-----"_s);
        m_client->Find<QCheckBox>("chkAll"_s)->setChecked(true);
        for (int row = 3; row < table->rowCount(); ++row)
            Check(table, {row}, Qt::Unchecked);
        table->setCurrentCell(1, 2);
        table->verticalScrollBar()->setValue(2);
        table->setFocus();
        const QStringList ids = Values(table, 0, Qt::UserRole);
        for (const int added : {1, 0}) {
            Refresh(tab, added);
            QCOMPARE(CheckedIds(table), ids.mid(0, 3));
            QCOMPARE(Id(table, table->currentRow()), ids.at(1));
            QCOMPARE(table->verticalScrollBar()->value(), 2);
            QCOMPARE(m_client->Form()->focusWidget(), table);
            QVERIFY(m_client->Find<QCheckBox>("chkAll"_s)->isChecked());
        }
        if (tab == 0)
            Deliver(5);
        else
            m_client->Button("btnPageOne"_s)->click();
        QCOMPARE(CheckedIds(table), QStringList());
        QCOMPARE(m_client->Form()->focusWidget() == m_client->Button("btnPageOne"_s), tab != 0);
    }

    void TellsARefreshFromANewPage()
    {
        SignInWithJobs(MakeJobs(3), 40);
        m_client->Button("btnPageTwo"_s)->click();
        QVERIFY(m_client->Call("RefreshJobList"));
        for (const char* checks : {"---", "x--"}) {
            Check(Jobs(), {0});
            Deliver(3);
            QCOMPARE(Checks(Jobs()), QLatin1String(checks));
        }
    }

    void DeletesTheRowsThatItAskedAbout_data() { AddTabs(); }
    void DeletesTheRowsThatItAskedAbout()
    {
        QFETCH(int, tab);
        OpenTab(tab);
        Check(Table(tab), {0, 2});
        const QStringList ids = CheckedIds(Table(tab));
        MessageBox().answer = MessageBoxStandIn::Consent();
        MessageBox().whileOpen = [this, tab] {
            Deliver(3);
            m_client->Tabs()->setCurrentIndex((tab + 1) % 3);
            m_client->Tabs()->setCurrentIndex(tab);
            m_client->Tabs()->setCurrentIndex((tab + 1) % 3);
            TakeJournal();
        };
        QVERIFY(m_client->Call("DeleteJobs"));
        const QString list = ids.join(","_s);
        const QStringList deletions {"ShowMessage, DeleteJobs"_s,
            QString("RemoveSubmitTasks by user "_s + list), QString("RemoveDownloadTasks "_s + list)};
        QVERIFY2(deletions.at(tab).endsWith(TakeJournal()), qUtf8Printable(deletions.at(tab)));
        if (tab == 0)
            QCOMPARE((QStringList {Sent("id[0]").toString(), Sent("id[1]").toString()}), ids);
    }

    void ActsOnTheRowsThatTheMenuWasOpenedOver_data() { AddTabs(); }
    void ActsOnTheRowsThatTheMenuWasOpenedOver()
    {
        QFETCH(int, tab);
        OpenTab(tab);
        Check(Table(tab), {0, 2});
        Table(tab)->setCurrentCell(2, 0);
        const QStringList ids = CheckedIds(Table(tab));
        const char* const entries[] = {"Download", "Continue submit", "Redownload"};
        QVERIFY(m_client->Call("ClickedCell", 4, 0));
        Later(Table(tab), [&] {
            // Another request for the menu must not disturb the open one.
            emit Table(tab)->customContextMenuRequested(QPoint());
            Reverse(tab);
            TakeJournal();
            m_client->Entry(entries[tab])->trigger();
            QApplication::activePopupWidget()->close();
        });
        emit Table(tab)->customContextMenuRequested(QPoint());
        const QString& last = ids.last();
        if (tab == 0)
            QCOMPARE(RenderCore().orders.value(0).keys(), (ids + QStringList("id-5"_s)));
        else
            QCOMPARE(TakeJournal(),
                tab == 1 ? QString("ContinueSubmit "_s + last)
                         : QString("RedownloadTasks "_s + CheckedIds(Table(tab)).join(","_s)));
        QVERIFY(Id(Table(tab), 0) != ids.first());
    }

    // A real menu has closed before its entry acts, and that may run a dialog of its own.
    void ShowsTheNewestAnswerAfterAMenu()
    {
        OpenTab(0);
        QVERIFY(m_client->Call("ClickedCell", 4, 0));
        MessageBox().whileOpen = [this] { Deliver(3); };
        Later(Jobs(), [this] {
            Deliver(4);
            QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Down);
            QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Return);
        });
        emit Jobs()->customContextMenuRequested(QPoint());
        QCOMPARE(Jobs()->rowCount(), 3);
        // The next user sees none of it.
        QVERIFY(m_client->Call("ClickedCell", 2, 0));
        Later(Jobs(), [this] {
            Deliver(4);
            m_client->SignIn("bob"_s);
            QVERIFY(!QApplication::activePopupWidget());
        });
        emit Jobs()->customContextMenuRequested(QPoint());
        QVERIFY(m_client->Call("ClickedCell", 1, 0));
        bool opened = false;
        Later(Jobs(), [&opened] {
            QWidget* menu = QApplication::activePopupWidget();
            opened = menu && menu->close();
        });
        emit Jobs()->customContextMenuRequested(QPoint());
        QVERIFY(opened);
        QCOMPARE(Jobs()->rowCount(), 3);
    }

    void StaysInPlaceWhenTheListShrinks()
    {
        OpenTab(0);
        Jobs()->setCurrentCell(4, 0);
        Jobs()->verticalScrollBar()->setValue(0);
        QVariantList jobs = MakeJobs(5);
        jobs.removeAt(3);
        QVERIFY(m_client->Call("RefreshJobList"));
        Communication().DeliverJobs(jobs, 4);
        QCOMPARE(Id(Jobs(), Jobs()->currentRow()), "id-5"_s);
        QCOMPARE(Jobs()->verticalScrollBar()->value(), 0);
    }

    void DropsAnswersWithoutASession()
    {
        Settings().insert("vtr.account.ann/autodownload"_s, true);
        for (const bool signsIn : {false, true}) {
            if (signsIn)
                SignInWithJobs({}, 0);
            Communication().DeliverJobs({MakeJob(1, 4)}, 1);
            QCOMPARE(Jobs()->rowCount(), signsIn ? 1 : 0);
            QCOMPARE(RenderCore().orders.size(), signsIn ? 1 : 0);
            emit Communication().SignOutResponse(200, {});
        }
    }

    void LetsTheLaterEventWin_data() { AddRows(Interruptions); }
    void LetsTheLaterEventWin()
    {
        const auto& [name, request, bySignOut] = Row(Interruptions);
        const bool signsOut = bySignOut;
        const std::function<void()> interrupt = [this, signsOut] {
            if (signsOut)
                emit Communication().SignOutResponse(200, {});
            else
                m_client->Service()->Hide(1);
        };
        std::function<void()> next = interrupt;
        for (int i = 0; i < request; ++i)
            next = [this, next] { Communication().onRequest = next; };
        Communication().onRequest = next;
        m_client->SignIn();
        QCOMPARE(Communication().requests.size(), request + 1);
        QCOMPARE(bool(m_client->Window()), signsOut);
        if (!signsOut)
            return;
        QVERIFY(m_client->RunningTimers(15000).isEmpty() && m_client->RunningTimers(30000).isEmpty());
        SignInWithJobs(MakeJobs(2), 2);
        QCOMPARE(Jobs()->rowCount(), 2);
    }

    void SurvivesItsEndInsideCalls()
    {
        for (const char* slot :
            {"SignOut", "ChangeTab", "RefreshJobList", "GetUserInfo", "PageButtonClicked"}) {
            init();
            SignInWithJobs(MakeJobs(18), 40);
            Communication().onRequest = [this] {
                m_client->Service()->Hide(1);
                QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            };
            if (QByteArray(slot) == "ChangeTab")
                QVERIFY(m_client->Call(slot, 0));
            else if (QByteArray(slot) == "PageButtonClicked")
                m_client->Button("btnNextPage"_s)->click();
            else
                QVERIFY(m_client->Call(slot));
            QVERIFY(!m_client->Window());
        }
    }

    void ReadsATaskBeforeItWritesTheRow()
    {
        OpenTab(1);
        RenderCore().tasks.first().stage = 3;
        RenderCore().tasks[1].error = 8;
        const auto lose = [this] {
            RenderCore().tasks.removeFirst();
            emit RenderCore().SubmitListChanged();
        };
        RenderCore().onArguments = lose;
        m_client->uiLoader.onSkin = lose;
        for (int tick = 0; tick < 2; ++tick)
            QVERIFY(m_client->Call("ShowSubmitList"));
        QCOMPARE(Values(Tasks(), 0, Qt::UserRole), RenderCore().GetSubmitTaskIds());
        QVERIFY(!RenderCore().onArguments && !m_client->uiLoader.onSkin);
    }

    void WarnsAgainAfterTheNextFailure()
    {
        OpenTab(1);
        auto& task = RenderCore().tasks.first();
        task.stage = 5;
        for (const int error : {8, 0, 8}) {
            task.error = error;
            QVERIFY(m_client->Call("ShowSubmitList"));
            QCOMPARE(Tasks()->item(0, 5)->data(Qt::UserRole).toString().isEmpty(), error == 0);
        }
    }

    void EndsQuestionsAboutTasksWithTheSession()
    {
        m_client->SignIn();
        emit RenderCore().failFile("a"_s, {});
        emit RenderCore().failFile("b"_s, {});
        MessageBox().answer = MessageBoxStandIn::Consent();
        MessageBox().whileOpen = [this] {
            emit Communication().SignOutResponse(200, {});
            m_client->SignIn("bob"_s);
            TakeJournal();
        };
        for (int tick = 0; tick < 2; ++tick)
            QVERIFY(m_client->Call("UploadRetryOption"));
        QCOMPARE(TakeJournal(), QString());
    }

private:
    static void AddTabs()
    {
        QTest::addColumn<int>("tab");
        for (int tab = 0; tab < 3; ++tab)
            QTest::newRow(Tables[tab]) << tab;
    }

    QTableWidget* Table(int tab) const { return m_client->Table(QLatin1String(Tables[tab])); }
    static QString Id(const QTableWidget* table, int row)
    {
        return Values(table, 0, Qt::UserRole).value(row);
    }
    static QStringList CheckedIds(const QTableWidget* table)
    {
        QStringList ids;
        for (int row = 0; row < table->rowCount(); ++row) {
            if (table->item(row, 0)->checkState() == Qt::Checked)
                ids.append(Id(table, row));
        }
        return ids;
    }

    /// Signs in and shows a tab with five rows, of which three fit.
    void OpenTab(int tab) const
    {
        for (int i = 1; i <= 5; ++i) {
            RenderCore().tasks.append({Numbered("t"_s, i), "/scene.ma"_s});
            RenderCore().downloads.insert(Numbered("d"_s, i), QVariantMap());
        }
        m_client->SignIn();
        m_client->Tabs()->setCurrentIndex(1);
        m_client->Tabs()->setCurrentIndex(tab);
        Deliver(5);
        Table(tab)->setFixedHeight(120);
        QCoreApplication::processEvents();
        TakeJournal();
    }

    void Deliver(int jobs) const { Communication().DeliverJobs(MakeJobs(jobs), jobs); }

    /// Refreshes a list as it happens by itself: jobs by the timer, local lists by a change and a tick.
    void Refresh(int tab, int added) const
    {
        if (tab == 0) {
            QVERIFY(m_client->Call("RefreshJobList"));
            Deliver(5 + added);
            return;
        }
        if (added > 0) {
            RenderCore().tasks.append({"t99"_s});
            RenderCore().downloads.insert("d99"_s, QVariantMap());
        }
        tab == 1 ? emit RenderCore().SubmitListChanged() : emit RenderCore().DownloadListChanged();
        QVERIFY(m_client->Tick(1000));
    }

    /// Turns a list round.
    void Reverse(int tab) const
    {
        if (tab == 0) {
            const QVariantList jobs = MakeJobs(5);
            Communication().DeliverJobs(QVariantList(jobs.crbegin(), jobs.crend()), 5);
        } else if (tab == 1) {
            std::reverse(RenderCore().tasks.begin(), RenderCore().tasks.end());
            emit RenderCore().SubmitListChanged();
        } else {
            RenderCore().downloads.insert("a"_s, QVariantMap());
            emit RenderCore().DownloadListChanged();
        }
    }
};

QTEST_MAIN(TestPluginRefills)
#include "tst_plugin_refills.moc"
