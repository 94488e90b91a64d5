#include "dialog_fixture.h"

#include "vtr_codetables.h"
#include "vtr_setparent.h"

#include <QDialog>
#include <QProgressBar>
#include <QPushButton>
#include <QSettings>
#include <QTableWidget>
#include <QtTest>

namespace {

const QString DependencyFolder = "data"_s;

enum Column { Sequence, Name, StartTime, Progress, Status, Cost, Count };

QVariantMap Job(const QString& id)
{
    return {{"job_id"_s, id}, {"job_type"_s, "maya"_s}, {"job_increasement"_s, "7"_s},
        {"job_name"_s, "<b>shot</b>"_s}, {"job_submit_time"_s, "today"_s}, {"job_progress"_s, 50},
        {"job_status"_s, 2}, {"job_cost"_s, 12.5}, {"job_cost_unit"_s, "RMB"_s}};
}

QVariantList Jobs(int count)
{
    QVariantList jobs;
    for (int i = 0; i < count; ++i)
        jobs << Job("c%1"_s.arg(i));
    return jobs;
}

QVariantMap InfoAnswer(const QString& id, int status)
{
    const QVariantMap job {{"jobStatus"_s, status}};
    const QVariantMap data {{"jobDatas"_s, job}};
    return {{"jobId"_s, id}, {"identifier"_s, 1}, {"data"_s, data}};
}

VTParameters Parameters(const QList<QVariant>& arguments)
{
    return arguments.at(0).value<VTParameters>();
}

QStringList JobIds(const QList<QVariant>& arguments)
{
    const VTParameters parameters = Parameters(arguments);
    QStringList ids;
    for (int i = 0; parameters.contains("id[%1]"_s.arg(i)); ++i)
        ids << parameters.value("id[%1]"_s.arg(i)).toString();
    return ids;
}

} // namespace

class TestSetParent : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { qRegisterMetaType<VTParameters>("VTParameters"); }

    void init()
    {
        m_services = std::make_unique<ServicesFixture>();
        m_account = std::make_unique<AccountFixture>(DependencyFolder);
        m_jobTable = std::make_unique<QTableWidget>(0, Count);
        m_form = std::make_unique<QDialog>();
        m_candidates = AddTo<QTableWidget>(m_form.get(), "twtJobList"_s);
        AddTo<QPushButton>(m_form.get(), "btnCloseSetParent"_s);
        m_ok = AddTo<QPushButton>(m_form.get(), "btnOkSetParent"_s);
        MakeDialog();
    }

    void OpensOnlyForWaitingAndRunningJobs_data()
    {
        QTest::addColumn<QList<int>>("checkedStates");
        QTest::addColumn<bool>("opens");

        QTest::newRow("nothing checked") << QList<int>() << false;
        QTest::newRow("waiting and running") << QList<int> {0, 1} << true;
        QTest::newRow("one finished") << QList<int> {0, 4} << false;
    }

    void OpensOnlyForWaitingAndRunningJobs()
    {
        QFETCH(QList<int>, checkedStates);
        AddJob("unchecked"_s, 4, false);
        for (int i = 0; i < checkedStates.size(); ++i)
            AddJob("s%1"_s.arg(i), checkedStates.at(i), true);
        const QSignalSpy spy(m_dialog.get(), &VTSetParent::getJobList);
        bool opened = false;
        Open([&] { opened = m_form->isVisible(); });
        QTEST(opened, "opens");
        QCOMPARE(spy.size(), opened ? 1 : 0);
        if (opened)
            QCOMPARE(spy.first(), QList<QVariant>({1, QString(), 1}));
    }

    void CandidateRows()
    {
        m_dialog->ShowParenList({Job("p1"_s), QVariant(), "rubbish"_s});
        QCOMPARE(m_candidates->rowCount(), 3);
        QCOMPARE(m_candidates->columnCount(), int(Count));
        const auto Item = [this](int column) { return m_candidates->item(0, column); };
        QCOMPARE(Item(Sequence)->data(Qt::UserRole).toString(), "p1"_s);
        QCOMPARE(Item(Sequence)->checkState(), Qt::Unchecked);
        QCOMPARE(Item(Name)->data(Qt::UserRole).toString(), "maya"_s);
        QCOMPARE(Item(Name)->text(), "<b>shot</b>"_s);
        QVERIFY(Item(Name)->toolTip().contains(QLatin1String("&lt;b&gt;")));
        QVERIFY(!Item(StartTime)->data(Qt::UserRole).isValid());
        QCOMPARE(Item(Status)->text(), "Pause"_s);
        QCOMPARE(Item(Status)->toolTip(), QString());
        QCOMPARE(Item(Cost)->text(), "12.5RMB"_s);
        const auto* bar = qobject_cast<QProgressBar*>(m_candidates->cellWidget(0, Progress));
        QVERIFY(bar);
        QCOMPARE(bar->value(), 50);
        QVERIFY(bar->styleSheet().contains(QLatin1String("255,161,94")));

        m_candidates->item(0, Sequence)->setCheckState(Qt::Checked);
        QCOMPARE(m_dialog->GetCheckedItem(), QStringList("p1&maya"_s));
    }

    void NewestListWins()
    {
        Soon(m_dialog.get(), [this] { m_dialog->ShowParenList(Jobs(2)); });
        m_dialog->ShowParenList(Jobs(50));
        QCOMPARE(m_candidates->rowCount(), 2);
    }

    void FillEnds_data()
    {
        QTest::addColumn<int>("end");
        QTest::newRow("cancelled") << int(Cancelled);
        QTest::newRow("dialog closed") << int(Closed);
        QTest::newRow("form gone") << int(FormGone);
        QTest::newRow("controller gone") << int(ControllerGone);
    }

    void FillEnds()
    {
        QFETCH(int, end);
        m_form->show();
        Soon(m_form.get(), [this, end] { End(end); });
        m_dialog->ShowParenList(Jobs(50));
        QVERIFY(end == FormGone || m_candidates->rowCount() < 50);
    }

    void ConfirmationStopsAndRemembersTheSons()
    {
        SignIn();
        AddJob("s1"_s, 0, true);
        AddJob("s2"_s, 1, true);
        const QSignalSpy stops(m_dialog.get(), &VTSetParent::stopJobs);
        Confirm({"p1"_s});

        QCOMPARE(stops.size(), 1);
        QCOMPARE(JobIds(stops.first()), QStringList({"s1"_s, "s2"_s}));
        QCOMPARE(Parameters(stops.first()).value("username"_s).toString(), "id of user"_s);
        QCOMPARE(Parameters(stops.first()).value("token"_s).toString(), "secret"_s);
        QVERIFY(!m_form->isVisible());
        QCOMPARE(Dependencies(), QStringList("s1&s2=p1&maya"_s));

        Confirm({"p2"_s, "p3"_s});
        QCOMPARE(Dependencies(), QStringList("s1&s2=p2&maya,p3&maya"_s));
    }

    void JobCannotWaitForItself()
    {
        SignIn();
        AddJob("p1"_s, 0, true);
        const QSignalSpy stops(m_dialog.get(), &VTSetParent::stopJobs);
        bool stayedOpen = false;
        Open([&] {
            ConfirmOpen({"xp12"_s});
            stayedOpen = m_form->isVisible();
        });
        QVERIFY(stayedOpen);
        QCOMPARE(stops.size(), 0);
        QVERIFY(Dependencies().isEmpty());

        Confirm({});
        QVERIFY(!m_form->isVisible());
        QCOMPARE(stops.size(), 0);
    }

    void FailedWriteIsToldAndHoldsMeanwhile()
    {
        m_account->Block();
        SignIn();
        AddJob("s1"_s, 0, true);
        Confirm({"p1"_s});
        QCOMPARE(m_services->messageBox.messages.size(), 1);
        QCOMPARE(m_services->logger.lines.size(), 1);
        QVERIFY(m_services->logger.lines.first().contains("|8|"_s));
        QVERIFY(!m_form->isVisible());

        const QSignalSpy recovers(m_dialog.get(), &VTSetParent::recoverJobs);
        m_dialog->TriggerJobInfoResponse(200, InfoAnswer("p1"_s, 4));
        QCOMPARE(recovers.size(), 1);
    }

    void PollGoesRoundTheSonGroupsOfTheFile()
    {
        m_account->Write("[parent]\na=p1&maya, odd\nb=p2&povray\n");
        SignIn();
        const QSignalSpy infos(m_dialog.get(), &VTSetParent::getJobInfo);
        for (int tick = 0; tick < 4; ++tick)
            m_dialog->GetJobInfo();
        QStringList asked;
        for (const QList<QVariant>& arguments : infos)
            asked << QString(Parameters(arguments).value("jobId"_s).toString() + QLatin1Char(':')
                + Parameters(arguments).value("jobtype"_s).toString());
        // Two groups, the tick that starts over, and the first group again.
        const QStringList first {"p1:maya"_s, "odd:"_s};
        QCOMPARE(asked, first + QStringList("p2:povray"_s) + first);

        const VTParameters expected {{"id"_s, "p2"_s}, {"jobId"_s, "p2"_s}, {"jobtype"_s, "povray"_s},
            {"identifier"_s, 1}, {"token"_s, "secret"_s}, {"username"_s, "id of user"_s}};
        QCOMPARE(Parameters(infos.at(2)), expected);
    }

    void PollRestsWithoutDependencies()
    {
        SignIn();
        auto* timer = m_dialog->findChild<QTimer*>();
        QVERIFY(timer->isActive());
        m_dialog->GetJobInfo();
        QVERIFY(!timer->isActive());
        AddJob("s1"_s, 0, true);
        Confirm({"p1"_s});
        QVERIFY(timer->isActive());
    }

    void SonsAreRecoveredWhenAllParentsHaveFinished()
    {
        m_account->Write("[parent]\ns1%26s2=p1&maya, p2&maya\ns3=p3&maya\n");
        SignIn();
        const QSignalSpy recovers(m_dialog.get(), &VTSetParent::recoverJobs);
        QVariantMap unmarked = InfoAnswer("p1"_s, 4);
        unmarked.insert("identifier"_s, 0);
        m_dialog->TriggerJobInfoResponse(500, InfoAnswer("p1"_s, 4));
        m_dialog->TriggerJobInfoResponse(200, unmarked);
        m_dialog->TriggerJobInfoResponse(200, InfoAnswer("p1"_s, 1));
        m_dialog->TriggerJobInfoResponse(200, {});
        m_dialog->TriggerJobInfoResponse(200, InfoAnswer("p2"_s, 4));
        QCOMPARE(recovers.size(), 0);

        m_dialog->TriggerJobInfoResponse(200, InfoAnswer("p1"_s, 4));
        QCOMPARE(recovers.size(), 1);
        QCOMPARE(JobIds(recovers.first()), QStringList({"s1"_s, "s2"_s}));
        QCOMPARE(Dependencies(), QStringList("s3=p3&maya"_s));
    }

    void RestartGoesOnWhereItWas()
    {
        SignIn();
        AddJob("s1"_s, 0, true);
        Confirm({"p1"_s});
        MakeDialog();
        SignIn();
        const QSignalSpy infos(m_dialog.get(), &VTSetParent::getJobInfo);
        m_dialog->GetJobInfo();
        QCOMPARE(infos.size(), 1);
    }

    void cleanup()
    {
        m_dialog.reset();
        m_form.reset();
        m_account.reset();
    }

private:
    enum FillEnd { Cancelled, Closed, FormGone, ControllerGone };

    void MakeDialog()
    {
        VTCodeTables tables;
        tables.Load();
        m_dialog = std::make_unique<VTSetParent>(
            m_form.get(), m_jobTable.get(), tables.mapProgressStyle, tables.mapJobStatus);
        m_dialog->SetServices(m_services->siblings);
        m_dialog->InitWidgets();
    }

    void SignIn()
    {
        m_dialog->GetSettings(AccountFixture::Server, "secret"_s, m_account->user, "id of user"_s);
    }

    void AddJob(const QString& id, int status, bool checked)
    {
        const int row = m_jobTable->rowCount();
        m_jobTable->insertRow(row);
        auto* first = new QTableWidgetItem;
        first->setData(Qt::UserRole, id);
        first->setCheckState(checked ? Qt::Checked : Qt::Unchecked);
        m_jobTable->setItem(row, Sequence, first);
        auto* state = new QTableWidgetItem;
        state->setData(Qt::UserRole, status);
        m_jobTable->setItem(row, Status, state);
    }

    /// Runs the dialog and does something while it is open.
    template <typename Function>
    void Open(Function whileOpen)
    {
        Soon(m_form.get(), [&] {
            whileOpen();
            m_form->close();
        });
        m_dialog->SetJobParent();
        // A dialog that did not open has not run the event loop either.
        QCoreApplication::processEvents();
    }

    void ConfirmOpen(const QStringList& parents)
    {
        QVariantList candidates {Job("unchecked"_s)};
        for (const QString& parent : parents)
            candidates << Job(parent);
        m_dialog->ShowParenList(candidates);
        for (int row = 1; row < m_candidates->rowCount(); ++row)
            m_candidates->item(row, Sequence)->setCheckState(Qt::Checked);
        m_ok->click();
    }

    void Confirm(const QStringList& parents)
    {
        Open([&] { ConfirmOpen(parents); });
    }

    void End(int end)
    {
        switch (end) {
        case Cancelled:
            m_dialog->CancelFill();
            break;
        case Closed:
            m_form->close();
            break;
        case FormGone:
            m_form.reset();
            break;
        default:
            m_dialog.reset();
        }
    }

    /// What the account's file holds, as other programs see it.
    QStringList Dependencies() const
    {
        QSettings settings(m_account->Path(), QSettings::IniFormat);
        settings.beginGroup("parent"_s);
        QStringList lines;
        const QStringList keys = settings.allKeys();
        for (const QString& key : keys)
            lines << QString(
                key + QLatin1Char('=') + settings.value(key).toStringList().join(QLatin1Char(',')));
        return lines;
    }

    std::unique_ptr<ServicesFixture> m_services;
    std::unique_ptr<AccountFixture> m_account;
    std::unique_ptr<QTableWidget> m_jobTable;
    std::unique_ptr<QDialog> m_form;
    std::unique_ptr<VTSetParent> m_dialog;
    QTableWidget* m_candidates = nullptr;
    QPushButton* m_ok = nullptr;
};

QTEST_MAIN(TestSetParent)
#include "tst_dialogs_setparent.moc"
