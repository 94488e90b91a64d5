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

const QString DependencyFolder = QStringLiteral("data");

enum Column { Sequence, Name, StartTime, Progress, Status, Cost, Count };

QVariantMap Job(const QString& id)
{
    return {{QStringLiteral("job_id"), id}, {QStringLiteral("job_type"), QStringLiteral("maya")},
        {QStringLiteral("job_increasement"), QStringLiteral("7")},
        {QStringLiteral("job_name"), QStringLiteral("<b>shot</b>")},
        {QStringLiteral("job_submit_time"), QStringLiteral("today")}, {QStringLiteral("job_progress"), 50},
        {QStringLiteral("job_status"), 2}, {QStringLiteral("job_cost"), 12.5},
        {QStringLiteral("job_cost_unit"), QStringLiteral("RMB")}};
}

QVariantList Jobs(int count)
{
    QVariantList jobs;
    for (int i = 0; i < count; ++i)
        jobs << Job(QStringLiteral("c%1").arg(i));
    return jobs;
}

QVariantMap InfoAnswer(const QString& id, int status)
{
    const QVariantMap job {{QStringLiteral("jobStatus"), status}};
    const QVariantMap data {{QStringLiteral("jobDatas"), job}};
    return {{QStringLiteral("jobId"), id}, {QStringLiteral("identifier"), 1}, {QStringLiteral("data"), data}};
}

VTParameters Parameters(const QList<QVariant>& arguments)
{
    return arguments.at(0).value<VTParameters>();
}

QStringList JobIds(const QList<QVariant>& arguments)
{
    const VTParameters parameters = Parameters(arguments);
    QStringList ids;
    for (int i = 0; parameters.contains(QStringLiteral("id[%1]").arg(i)); ++i)
        ids << parameters.value(QStringLiteral("id[%1]").arg(i)).toString();
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
        m_candidates = AddTo<QTableWidget>(m_form.get(), QStringLiteral("twtJobList"));
        AddTo<QPushButton>(m_form.get(), QStringLiteral("btnCloseSetParent"));
        m_ok = AddTo<QPushButton>(m_form.get(), QStringLiteral("btnOkSetParent"));
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
        AddJob(QStringLiteral("unchecked"), 4, false);
        for (int i = 0; i < checkedStates.size(); ++i)
            AddJob(QStringLiteral("s%1").arg(i), checkedStates.at(i), true);
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
        m_dialog->ShowParenList({Job(QStringLiteral("p1")), QVariant(), QStringLiteral("rubbish")});
        QCOMPARE(m_candidates->rowCount(), 3);
        QCOMPARE(m_candidates->columnCount(), int(Count));
        const auto Item = [this](int column) { return m_candidates->item(0, column); };
        QCOMPARE(Item(Sequence)->data(Qt::UserRole).toString(), QStringLiteral("p1"));
        QCOMPARE(Item(Sequence)->checkState(), Qt::Unchecked);
        QCOMPARE(Item(Name)->data(Qt::UserRole).toString(), QStringLiteral("maya"));
        QCOMPARE(Item(Name)->text(), QStringLiteral("<b>shot</b>"));
        QVERIFY(Item(Name)->toolTip().contains(QLatin1String("&lt;b&gt;")));
        QVERIFY(!Item(StartTime)->data(Qt::UserRole).isValid());
        QCOMPARE(Item(Status)->text(), QStringLiteral("Pause"));
        QCOMPARE(Item(Status)->toolTip(), QString());
        QCOMPARE(Item(Cost)->text(), QStringLiteral("12.5RMB"));
        const auto* bar = qobject_cast<QProgressBar*>(m_candidates->cellWidget(0, Progress));
        QVERIFY(bar);
        QCOMPARE(bar->value(), 50);
        QVERIFY(bar->styleSheet().contains(QLatin1String("255,161,94")));

        m_candidates->item(0, Sequence)->setCheckState(Qt::Checked);
        QCOMPARE(m_dialog->GetCheckedItem(), QStringList(QStringLiteral("p1&maya")));
    }

    void NewestListWins()
    {
        QTimer::singleShot(0, m_dialog.get(), [this] { m_dialog->ShowParenList(Jobs(2)); });
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
        QTimer::singleShot(0, m_form.get(), [this, end] { End(end); });
        m_dialog->ShowParenList(Jobs(50));
        QVERIFY(end == FormGone || m_candidates->rowCount() < 50);
    }

    void ConfirmationStopsAndRemembersTheSons()
    {
        SignIn();
        AddJob(QStringLiteral("s1"), 0, true);
        AddJob(QStringLiteral("s2"), 1, true);
        const QSignalSpy stops(m_dialog.get(), &VTSetParent::stopJobs);
        Confirm({QStringLiteral("p1")});

        QCOMPARE(stops.size(), 1);
        QCOMPARE(JobIds(stops.first()), QStringList({QStringLiteral("s1"), QStringLiteral("s2")}));
        QCOMPARE(Parameters(stops.first()).value(QStringLiteral("username")).toString(),
            QStringLiteral("id of user"));
        QCOMPARE(
            Parameters(stops.first()).value(QStringLiteral("token")).toString(), QStringLiteral("secret"));
        QVERIFY(!m_form->isVisible());
        QCOMPARE(Dependencies(), QStringList(QStringLiteral("s1&s2=p1&maya")));

        Confirm({QStringLiteral("p2"), QStringLiteral("p3")});
        QCOMPARE(Dependencies(), QStringList(QStringLiteral("s1&s2=p2&maya,p3&maya")));
    }

    void JobCannotWaitForItself()
    {
        SignIn();
        AddJob(QStringLiteral("p1"), 0, true);
        const QSignalSpy stops(m_dialog.get(), &VTSetParent::stopJobs);
        bool stayedOpen = false;
        Open([&] {
            ConfirmOpen({QStringLiteral("xp12")});
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
        AddJob(QStringLiteral("s1"), 0, true);
        Confirm({QStringLiteral("p1")});
        QCOMPARE(m_services->messageBox.shown.size(), 1);
        QCOMPARE(m_services->logger.lines.size(), 1);
        QVERIFY(m_services->logger.lines.first().startsWith(QLatin1String("16 ")));
        QVERIFY(!m_form->isVisible());

        const QSignalSpy recovers(m_dialog.get(), &VTSetParent::recoverJobs);
        m_dialog->TriggerJobInfoResponse(200, InfoAnswer(QStringLiteral("p1"), 4));
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
            asked << QString(Parameters(arguments).value(QStringLiteral("jobId")).toString()
                + QLatin1Char(':') + Parameters(arguments).value(QStringLiteral("jobtype")).toString());
        // Two groups, the tick that starts over, and the first group again.
        const QStringList first {QStringLiteral("p1:maya"), QStringLiteral("odd:")};
        QCOMPARE(asked, first + QStringList(QStringLiteral("p2:povray")) + first);

        const VTParameters expected {{QStringLiteral("id"), QStringLiteral("p2")},
            {QStringLiteral("jobId"), QStringLiteral("p2")},
            {QStringLiteral("jobtype"), QStringLiteral("povray")}, {QStringLiteral("identifier"), 1},
            {QStringLiteral("token"), QStringLiteral("secret")},
            {QStringLiteral("username"), QStringLiteral("id of user")}};
        QCOMPARE(Parameters(infos.at(2)), expected);
    }

    void PollRestsWithoutDependencies()
    {
        SignIn();
        auto* timer = m_dialog->findChild<QTimer*>();
        QVERIFY(timer->isActive());
        m_dialog->GetJobInfo();
        QVERIFY(!timer->isActive());
        AddJob(QStringLiteral("s1"), 0, true);
        Confirm({QStringLiteral("p1")});
        QVERIFY(timer->isActive());
    }

    void SonsAreRecoveredWhenAllParentsHaveFinished()
    {
        m_account->Write("[parent]\ns1%26s2=p1&maya, p2&maya\ns3=p3&maya\n");
        SignIn();
        const QSignalSpy recovers(m_dialog.get(), &VTSetParent::recoverJobs);
        QVariantMap unmarked = InfoAnswer(QStringLiteral("p1"), 4);
        unmarked.insert(QStringLiteral("identifier"), 0);
        m_dialog->TriggerJobInfoResponse(500, InfoAnswer(QStringLiteral("p1"), 4));
        m_dialog->TriggerJobInfoResponse(200, unmarked);
        m_dialog->TriggerJobInfoResponse(200, InfoAnswer(QStringLiteral("p1"), 1));
        m_dialog->TriggerJobInfoResponse(200, {});
        m_dialog->TriggerJobInfoResponse(200, InfoAnswer(QStringLiteral("p2"), 4));
        QCOMPARE(recovers.size(), 0);

        m_dialog->TriggerJobInfoResponse(200, InfoAnswer(QStringLiteral("p1"), 4));
        QCOMPARE(recovers.size(), 1);
        QCOMPARE(JobIds(recovers.first()), QStringList({QStringLiteral("s1"), QStringLiteral("s2")}));
        QCOMPARE(Dependencies(), QStringList(QStringLiteral("s3=p3&maya")));
    }

    void RestartGoesOnWhereItWas()
    {
        SignIn();
        AddJob(QStringLiteral("s1"), 0, true);
        Confirm({QStringLiteral("p1")});
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
        m_dialog->GetSettings(
            AccountFixture::Server, QStringLiteral("secret"), m_account->user, QStringLiteral("id of user"));
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
        QTimer::singleShot(0, m_form.get(), [&] {
            whileOpen();
            m_form->close();
        });
        m_dialog->SetJobParent();
        // A dialog that did not open has not run the event loop either.
        QCoreApplication::processEvents();
    }

    void ConfirmOpen(const QStringList& parents)
    {
        QVariantList candidates {Job(QStringLiteral("unchecked"))};
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
        settings.beginGroup(QStringLiteral("parent"));
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
