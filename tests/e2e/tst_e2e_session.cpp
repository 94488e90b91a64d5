#include "host/mainform/main_form.h"
#include "tests/e2e/running_client.h"

#include <QAction>
#include <QComboBox>
#include <QPushButton>
#include <QStandardPaths>
#include <QTableWidget>

using farm::JobStatus;

namespace {

constexpr int StatusColumn = 4;

QString WriteProgram(const QString& path, const QString& script)
{
    WriteFile(path, "#!/bin/sh\n" + script.toUtf8());
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return path;
}

/// @return a cell of the job's row; null while the table or the row is missing.
QTableWidgetItem* Cell(const QTableWidget* table, const QString& job, int column = 0)
{
    for (int row = 0; table && row < table->rowCount(); ++row) {
        if (table->item(row, 0)->data(Qt::UserRole) == job)
            return table->item(row, column);
    }
    return nullptr;
}

int ShownStatus(const QString& job)
{
    const QTableWidgetItem* cell = Cell(FindJobTable(), job, StatusColumn);
    return cell ? cell->data(Qt::UserRole).toInt() : -1;
}

/// Stops the window's own refreshes, so that only the farm's announcements change the list.
void StopRefreshTimers()
{
    constexpr int ShortestRefresh = 15000; // ms
    const auto timers = FindMainWindow()->findChildren<QTimer*>();
    for (QTimer* timer : timers) {
        if (timer->interval() >= ShortestRefresh)
            timer->stop();
    }
}

bool Check(const QTableWidget* table, const QString& job)
{
    QTableWidgetItem* cell = Cell(table, job);
    if (cell)
        cell->setCheckState(Qt::Checked);
    return cell;
}

/// Chooses an entry of the job table's context menu.
bool Choose(const QString& text)
{
    const auto entries = FindMainWindow()->findChildren<QAction*>();
    const auto entry = std::find_if(
        entries.begin(), entries.end(), [&text](const QAction* action) { return action->text() == text; });
    if (entry != entries.end())
        (*entry)->trigger();
    return entry != entries.end();
}

} // namespace

/// Sessions with the whole client and a farm that renders.
class TestE2eSession : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_client = std::make_unique<RunningClient>(); }
    void cleanup() { m_client.reset(); }

    void ASonWaitsForItsParentAcrossARestart()
    {
        const auto data = m_client->PrepareFarm("waiter");
        farm::NewJob job = data->Job("son"_s, 2);
        job.scene = "ripples.pov"_s;
        job.width = 64;
        job.height = 36;
        const QString son = data->jobs.Add(job).id;
        job.status = JobStatus::Paused;
        const QString parent = data->jobs.Add(job).id;
        const auto statusOf = [&](const QString& id) { return data->jobs.Find(data->account, id).status; };
        const auto areListed = [&] { return ShownStatus(son) >= 0 && ShownStatus(parent) >= 0; };
        const QString farm = GatedFarm();

        QCOMPARE(m_client->Start("waiter"_s, farm), QString());
        EVENTUALLY(areListed());
        QCOMPARE(Find<QLabel>("lblUserName")->text(), "waiter"_s);
        EVENTUALLY(!Find<QLabel>("lblRmb")->text().isEmpty());
        EVENTUALLY_COMPARE(statusOf(son), int(JobStatus::Running));
        QVERIFY(Check(FindJobTable(), son));
        const Soon confirmed([&] {
            if (!Check(Find<QTableWidget>("twtJobList"), parent))
                return false;
            Find<QPushButton>("btnOkSetParent")->click();
            return true;
        });
        QVERIFY(Choose("Set parent"_s));
        QVERIFY(confirmed.IsDone());
        EVENTUALLY_COMPARE(statusOf(son), int(JobStatus::Paused));

        m_client->Stop();
        QVERIFY(WriteFile(m_client->Path("gate"_s), {}));
        QCOMPARE(m_client->Start("waiter"_s, farm), QString());
        EVENTUALLY(areListed());
        QCOMPARE(ShownStatus(son), int(JobStatus::Paused));
        QVERIFY(Check(FindJobTable(), parent));
        StopRefreshTimers();
        Find<QPushButton>("btnRecover")->click();
        EVENTUALLY_COMPARE(statusOf(parent), int(JobStatus::Finished));
        EVENTUALLY_COMPARE(statusOf(son), int(JobStatus::Finished));
        EVENTUALLY_COMPARE(ShownStatus(son), int(JobStatus::Finished));
        QVERIFY(QFile::exists(m_client->Path("farm/jobs/%1/frame_0002.png"_s.arg(son))));
        const QString dependencies = BesideProgram("data/embedded_waiter.ini"_s);
        QVERIFY(QFile::exists(dependencies) && !ReadFile(dependencies).contains(son.toLatin1()));

        QMetaObject::invokeMethod(FindMainWindow(), "SignOut");
        EVENTUALLY(Find<QPushButton>("btnSignIn")->isVisible());
        QCOMPARE(FindJobTable()->rowCount(), 0);
    }

    void AServerThatIsNoUrlStartsNoFarm()
    {
        QVERIFY(WriteFile(m_client->Path("client.ini"_s), "[vtr.web]\nserverurl=farm.example\n"));
        const Soon told([] { return Answer("farm.example"_s, "btnMessageBox_1"); });
        QVERIFY(m_client->Start("demo"_s).contains("farm.example"_s));
        QVERIFY(told.IsDone() && !QFile::exists(m_client->Path("farm"_s)));
    }

    void AnAccountInArrearsIsToldAndCanSearch()
    {
        QCOMPARE(m_client->Start("arrears"_s), QString());
        EVENTUALLY(FindJobTable()->rowCount() > 0);
        const QTableWidget* table = FindJobTable();
        const QString job = table->item(0, 0)->data(Qt::UserRole).toString();
        QCOMPARE(ShownStatus(job), int(JobStatus::Arrears));
        QVERIFY(Check(table, job));
        const Soon told([] { return Answer("Amount Overdue!"_s, "btnMessageBox_1"); });
        Find<QPushButton>("btnRecover")->click();
        EVENTUALLY(told.IsDone());
        QCOMPARE(ShownStatus(job), int(JobStatus::Arrears));

        // The entry comes from the list of job types that is shipped with the host.
        Find<QComboBox>("cmbJobType")->setCurrentText("POV-Ray"_s);
        Find<QComboBox>("cmbJobStatus")->setCurrentText("Arrears"_s);
        Find<QPushButton>("btnSearchJob")->click();
        EVENTUALLY_COMPARE(table->rowCount(), 2);
        QVERIFY(Find<QComboBox>("cmbJobType")->currentIndex() > 0);
    }

private:
    /// @return a program that is the farm, whose renderer waits until the file "gate" exists.
    QString GatedFarm() const
    {
        const QString folder = m_client->Path("bin"_s);
        QDir().mkdir(folder);
        WriteProgram(folder + "/povray"_s,
            "while [ ! -e '%1' ]; do sleep 0.05; done; exec '%2' \"$@\""_s.arg(
                m_client->Path("gate"_s), QStandardPaths::findExecutable("povray"_s)));
        return WriteProgram(folder + "/farm"_s,
            "PATH='%1':$PATH exec '%2' \"$@\""_s.arg(folder, BesideProgram("quillstar-farmd"_s)));
    }

    std::unique_ptr<RunningClient> m_client;
};

QTEST_MAIN(TestE2eSession)
#include "tst_e2e_session.moc"
