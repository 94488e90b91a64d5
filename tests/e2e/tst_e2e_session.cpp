#include "farm/jobs/job_store.h"
#include "host/mainform/main_form.h"
#include "tests/e2e/running_client.h"

#include <QAction>
#include <QComboBox>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPushButton>
#include <QTableWidget>

using farm::JobStatus;

namespace {

constexpr int StatusColumn = 4;

/// The farm's own job types, but each frame waits until the file `gate` exists before it is rendered.
QByteArray GatedTypes(const QString& gate)
{
    const QJsonDocument types = QJsonDocument::fromJson(ReadFile(BesideProgram("farm/job_types.json"_s)));
    QJsonObject type = types["povray"_s].toObject();
    QJsonArray arguments {"-c"_s, "while [ ! -e '%1' ]; do sleep 0.05; done; exec \"$0\" \"$@\""_s.arg(gate),
        type["program"_s]};
    const QJsonArray own = type["arguments"_s].toArray();
    for (const QJsonValue& argument : own)
        arguments.append(argument);
    type["program"_s] = "/bin/sh"_s;
    type["arguments"_s] = arguments;
    return QJsonDocument(QJsonObject {{"povray"_s, type}}).toJson();
}

int RowOf(const QTableWidget* table, const QString& job)
{
    for (int row = 0; table && row < table->rowCount(); ++row) {
        if (table->item(row, 0)->data(Qt::UserRole) == job)
            return row;
    }
    return -1;
}

int ShownStatus(const QString& job)
{
    const int row = RowOf(FindJobTable(), job);
    return row < 0 ? -1 : FindJobTable()->item(row, StatusColumn)->data(Qt::UserRole).toInt();
}

bool Check(QTableWidget* table, const QString& job)
{
    const int row = RowOf(table, job);
    if (row >= 0)
        table->item(row, 0)->setCheckState(Qt::Checked);
    return row >= 0;
}

/// Chooses an entry of the job table's context menu.
bool Choose(const QString& text)
{
    const auto entries = FindMainWindow()->findChildren<QAction*>();
    for (QAction* entry : entries) {
        if (entry->text() == text) {
            entry->trigger();
            return true;
        }
    }
    return false;
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
        farm::NewJob job;
        const auto database = m_client->PrepareFarm("waiter"_s, &job.account);
        farm::JobStore jobs(*database);
        job.type = "povray"_s;
        job.scene = "ripples.pov"_s;
        job.width = 64;
        job.height = 36;
        job.frames = {{1, 2}};
        job.name = "son"_s;
        const QString son = jobs.Add(job).id;
        job.name = "parent"_s;
        job.status = JobStatus::Paused;
        const QString parent = jobs.Add(job).id;
        const auto statusOf = [&](const QString& id) { return jobs.Find(job.account, id).status; };
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
        Find<QPushButton>("btnRecover")->click();
        EVENTUALLY_COMPARE(statusOf(parent), int(JobStatus::Finished));
        EVENTUALLY_COMPARE(statusOf(son), int(JobStatus::Finished));
        Find<QPushButton>("btnPageOne")->click();
        EVENTUALLY_COMPARE(ShownStatus(son), int(JobStatus::Finished));
        QVERIFY(QFile::exists(m_client->Path("farm/jobs/%1/frame_0002.png"_s.arg(son))));
        const QString dependencies = BesideProgram("data/embedded_waiter.ini"_s);
        QVERIFY(QFile::exists(dependencies) && !ReadFile(dependencies).contains(son.toLatin1()));

        QMetaObject::invokeMethod(FindMainWindow(), "SignOut");
        EVENTUALLY(Find<QPushButton>("btnSignIn")->isVisible());
        QCOMPARE(FindJobTable()->rowCount(), 0);
    }

    void AnAccountInArrearsIsToldAndCanSearch()
    {
        QCOMPARE(m_client->Start("arrears"_s), QString());
        EVENTUALLY(FindJobTable()->rowCount() > 0);
        const QTableWidget* table = FindJobTable();
        const int all = table->rowCount();
        const QString job = table->item(0, 0)->data(Qt::UserRole).toString();
        QCOMPARE(ShownStatus(job), int(JobStatus::Arrears));
        for (const char* button : {"btnRecover", "btnRestart", "btnFullRender"}) {
            QVERIFY(Check(FindJobTable(), job));
            const Soon told([] { return Answer("Amount Overdue!"_s, "btnMessageBox_1"); });
            Find<QPushButton>(button)->click();
            EVENTUALLY(told.IsDone());
        }
        QCOMPARE(ShownStatus(job), int(JobStatus::Arrears));

        Find<QComboBox>("cmbJobStatus")->setCurrentText("Arrears"_s);
        Find<QPushButton>("btnSearchJob")->click();
        EVENTUALLY_COMPARE(table->rowCount(), 2);
        Find<QComboBox>("cmbJobStatus")->setCurrentIndex(0);
        // The entry comes from the list of job types that is shipped with the host.
        Find<QComboBox>("cmbJobType")->setCurrentText("POV-Ray"_s);
        QVERIFY(Find<QComboBox>("cmbJobType")->currentIndex() > 0);
        Find<QPushButton>("btnSearchJob")->click();
        EVENTUALLY_COMPARE(table->rowCount(), all);
    }

private:
    /// @return a program that is the farm, with job types that wait for the file "gate".
    QString GatedFarm() const
    {
        const QString program = m_client->Path("farm.sh"_s);
        WriteFile(m_client->Path("types.json"_s), GatedTypes(m_client->Path("gate"_s)));
        const QString script = "#!/bin/sh\nexec '%1' \"$@\" --job-types '%2'\n"_s.arg(
            BesideProgram("quillstar-farmd"_s), m_client->Path("types.json"_s));
        WriteFile(program, script.toUtf8());
        QFile::setPermissions(program, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return program;
    }

    std::unique_ptr<RunningClient> m_client;
};

QTEST_MAIN(TestE2eSession)
#include "tst_e2e_session.moc"
