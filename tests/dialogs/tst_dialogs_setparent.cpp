#include "tests/dialogs/dialog_fixture.h"

#include "common/vtr_codetables.h"
#include "dialogs/vtr_setparent.h"

#include <QDialog>
#include <QProgressBar>
#include <QPushButton>
#include <QSettings>
#include <QTableWidget>

namespace {

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

QVariantMap InfoAnswer(const QString& id, int status, int identifier = 1)
{
    const QVariantMap job {{"jobStatus"_s, status}};
    return {{"jobId"_s, id}, {"identifier"_s, identifier}, {"data"_s, QVariantMap {{"jobDatas"_s, job}}}};
}

VTParameters Parameters(const QList<QVariant>& arguments)
{
    return arguments.at(0).value<VTParameters>();
}

struct Choice
{
    const char* name;
    QList<int> states; ///< of the checked jobs
    bool opens;
};
const Choice choices[] = {
    {"nothing checked", {}, false}, {"waiting and running", {0, 1}, true}, {"one finished", {0, 4}, false}};

} // namespace

class TestSetParent : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { qRegisterMetaType<VTParameters>("VTParameters"); }

    void init()
    {
        m_services = std::make_unique<ServicesFixture>();
        m_account = std::make_unique<AccountFixture>("data"_s);
        m_jobTable = std::make_unique<QTableWidget>(0, Count);
        m_form.reset(NewForm("com.vtr.setparent"_s, {}));
        m_candidates = Find<QTableWidget>(m_form, "twtJobList");
        VTCodeTables tables;
        tables.Load();
        m_dialog = std::make_unique<VTSetParent>(
            m_form.get(), m_jobTable.get(), tables.mapProgressStyle, tables.mapJobStatus);
        m_dialog->SetServices(m_services->siblings);
        m_dialog->InitWidgets();
        m_stops = std::make_unique<QSignalSpy>(m_dialog.get(), &VTSetParent::stopJobs);
        m_recovers = std::make_unique<QSignalSpy>(m_dialog.get(), &VTSetParent::recoverJobs);
    }

    void OpensOnlyForWaitingAndRunningJobs_data() { AddRows(choices); }
    void OpensOnlyForWaitingAndRunningJobs()
    {
        AddJob("unchecked"_s, 4, false);
        for (const int state : Row(choices).states)
            AddJob("s%1"_s.arg(state), state);
        const QSignalSpy spy(m_dialog.get(), &VTSetParent::getJobList);
        bool opened = false;
        Open([&] { opened = m_form->isVisible(); });
        QCOMPARE(opened, Row(choices).opens);
        QCOMPARE(spy.value(0), opened ? QVariantList({1, QString(), 1}) : QVariantList());
    }

    void CandidateRows()
    {
        m_dialog->ShowParenList({Job("p1"_s), QVariant(), "rubbish"_s});
        QCOMPARE(m_candidates->rowCount(), 3);
        QCOMPARE(m_candidates->columnCount(), int(Count));
        const auto Item = [this](int column) { return m_candidates->item(0, column); };
        QCOMPARE(Item(Sequence)->data(Qt::UserRole).toString(), "p1"_s);
        QCOMPARE(Item(Sequence)->checkState(), Qt::Unchecked);
        QCOMPARE(Item(Name)->text(), "<b>shot</b>"_s);
        QVERIFY(Item(Name)->toolTip().contains("&lt;b&gt;"_s));
        QVERIFY(!Item(StartTime)->data(Qt::UserRole).isValid());
        QCOMPARE(Item(Status)->text(), "Pause"_s);
        QCOMPARE(Item(Status)->toolTip(), QString());
        QCOMPARE(Item(Cost)->text(), "12.5RMB"_s);
        const auto* bar = qobject_cast<QProgressBar*>(m_candidates->cellWidget(0, Progress));
        QCOMPARE(bar->value(), 50);
        QVERIFY(bar->styleSheet().contains("255,161,94"_s));
        Item(Sequence)->setCheckState(Qt::Checked);
        QCOMPARE(m_dialog->GetCheckedItem(), QStringList("p1&maya"_s));
    }

    void NewestListWins()
    {
        QTimer::singleShot(0, m_dialog.get(), [this] { m_dialog->ShowParenList(Jobs(2)); });
        m_dialog->ShowParenList(Jobs(50));
        QCOMPARE(m_candidates->rowCount(), 2);
    }

    void FillEnds()
    {
        const std::function<void()> ends[] = {[this] { m_dialog->CancelFill(); }, [this] { m_form->close(); },
            [this] { m_dialog.reset(); }, [this] { m_form.reset(); }};
        for (const auto& end : ends) {
            if (!m_dialog)
                init();
            m_form->show();
            QTimer::singleShot(0, m_form.get(), end);
            m_dialog->ShowParenList(Jobs(50));
            QVERIFY(!m_form || m_candidates->rowCount() < 50);
        }
        CallEverySlot(m_dialog.get());
    }

    void ConfirmationStopsAndRemembersTheSons()
    {
        SignIn();
        const auto* poll = m_dialog->findChild<QTimer*>();
        QVERIFY(poll->isActive());
        m_dialog->GetJobInfo();
        QVERIFY(!poll->isActive());
        AddJob("s1"_s, 0);
        AddJob("s2"_s, 1);
        Confirm({"p1"_s});
        QVERIFY(poll->isActive());
        QCOMPARE(m_stops->size(), 1);
        QCOMPARE(Parameters(m_stops->first()),
            (VTParameters {{"id[0]"_s, "s1"_s}, {"id[1]"_s, "s2"_s}, {"username"_s, "id of user"_s},
                {"token"_s, "secret"_s}}));
        QVERIFY(!m_form->isVisible());
        QCOMPARE(Dependencies(), QStringList("s1&s2=p1&maya"_s));
        Confirm({"p2"_s, "p3"_s});
        QCOMPARE(Dependencies(), QStringList("s1&s2=p2&maya,p3&maya"_s));
    }

    void JobCannotWaitForItself()
    {
        SignIn();
        AddJob("p1"_s, 0);
        Open([this] {
            ConfirmOpen({"xp12"_s});
            QVERIFY(m_form->isVisible());
            ConfirmOpen({});
            QVERIFY(!m_form->isVisible());
        });
        QCOMPARE(m_stops->size(), 0);
        QVERIFY(Dependencies().isEmpty());
    }

    void FailedWriteIsToldAndHoldsMeanwhile()
    {
        m_account->Block();
        SignIn();
        AddJob("s1"_s, 0);
        Confirm({"p1"_s});
        QCOMPARE(m_services->messageBox.messages.size(), 1);
        QCOMPARE(m_services->logger.lines.size(), 1);
        QVERIFY(m_services->logger.lines.first().contains("|8|"_s));
        QVERIFY(!m_form->isVisible());
        Answer(InfoAnswer("p1"_s, 4));
        QCOMPARE(m_recovers->size(), 1);
    }

    void PollGoesRoundTheSonGroupsOfTheFile()
    {
        m_account->Write("[parent]\na=p1&maya, odd\nb=p2&povray\n");
        SignIn();
        const QSignalSpy infos(m_dialog.get(), &VTSetParent::getJobInfo);
        for (int tick = 0; tick < 4; ++tick)
            m_dialog->GetJobInfo();
        Answer(InfoAnswer("p2"_s, 4));
        for (int tick = 0; tick < 3; ++tick)
            m_dialog->GetJobInfo();
        QStringList asked;
        for (const QList<QVariant>& arguments : infos)
            asked << Parameters(arguments).value("jobId"_s).toString();
        // Two groups, the tick that starts over, the first group, none for the one that has gone, and over again.
        QCOMPARE(asked.join(" "_s), "p1 odd p2 p1 odd p1 odd"_s);
        const VTParameters expected {{"id"_s, "p2"_s}, {"jobId"_s, "p2"_s}, {"jobtype"_s, "povray"_s},
            {"identifier"_s, 1}, {"token"_s, "secret"_s}, {"username"_s, "id of user"_s}};
        QCOMPARE(Parameters(infos.at(2)), expected);
        QCOMPARE(Parameters(infos.at(1)).value("jobtype"_s), QVariant(QString()));
    }

    void SonsAreRecoveredWhenAllParentsHaveFinished()
    {
        m_account->Write("[parent]\ns1%26s2=p1&maya, p2&maya\ns3=p1&maya, p3&maya\n");
        SignIn();
        Answer(InfoAnswer("p1"_s, 4), 500);
        for (const QVariantMap& answer : {InfoAnswer("p1"_s, 4, 0), InfoAnswer("p1"_s, 1), QVariantMap(),
                 InfoAnswer("p"_s, 4), InfoAnswer("p2"_s, 4)})
            Answer(answer);
        QCOMPARE(m_recovers->size(), 0);
        Answer(InfoAnswer("p1"_s, 4));
        QCOMPARE(m_recovers->size(), 1);
        QCOMPARE(Parameters(m_recovers->first()),
            (VTParameters {{"id[0]"_s, "s1"_s}, {"id[1]"_s, "s2"_s}, {"username"_s, "id of user"_s},
                {"token"_s, "secret"_s}}));
        QCOMPARE(Dependencies(), QStringList("s3=p1&maya,p3&maya"_s));
        // What finished for one group counts for the next.
        Answer(InfoAnswer("p3"_s, 4));
        QCOMPARE(m_recovers->size(), 2);
        QVERIFY(Dependencies().isEmpty());
    }

    void cleanup()
    {
        m_dialog.reset();
        m_form.reset();
        m_account.reset();
    }

private:
    void SignIn() { m_dialog->GetSettings(m_account->server, "secret"_s, m_account->user, "id of user"_s); }
    void Answer(const QVariantMap& data, int result = 200) { m_dialog->TriggerJobInfoResponse(result, data); }

    void AddJob(const QString& id, int status, bool checked = true)
    {
        const int row = m_jobTable->rowCount();
        m_jobTable->insertRow(row);
        for (const int column : {Sequence, Status})
            m_jobTable->setItem(row, column, new QTableWidgetItem);
        m_jobTable->item(row, Sequence)->setData(Qt::UserRole, id);
        m_jobTable->item(row, Sequence)->setCheckState(checked ? Qt::Checked : Qt::Unchecked);
        m_jobTable->item(row, Status)->setData(Qt::UserRole, status);
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
        QVariantList candidates {Job("unchecked"_s)};
        for (const QString& parent : parents)
            candidates << Job(parent);
        m_dialog->ShowParenList(candidates);
        for (int row = 1; row < m_candidates->rowCount(); ++row)
            m_candidates->item(row, Sequence)->setCheckState(Qt::Checked);
        Find<QPushButton>(m_form, "btnOkSetParent")->click();
    }

    void Confirm(const QStringList& parents)
    {
        Open([&] { ConfirmOpen(parents); });
    }

    /// What the account's file holds, as other programs see it.
    QStringList Dependencies() const
    {
        QSettings settings(m_account->Path(), QSettings::IniFormat);
        settings.beginGroup("parent"_s);
        QStringList lines;
        for (const QString& key : settings.allKeys())
            lines << QString(key + "="_s + settings.value(key).toStringList().join(","_s));
        return lines;
    }

    std::unique_ptr<ServicesFixture> m_services;
    std::unique_ptr<AccountFixture> m_account;
    std::unique_ptr<QTableWidget> m_jobTable;
    std::unique_ptr<QWidget> m_form;
    std::unique_ptr<VTSetParent> m_dialog;
    std::unique_ptr<QSignalSpy> m_stops;
    std::unique_ptr<QSignalSpy> m_recovers;
    QTableWidget* m_candidates = nullptr;
};

QTEST_MAIN(TestSetParent)
#include "tst_dialogs_setparent.moc"
