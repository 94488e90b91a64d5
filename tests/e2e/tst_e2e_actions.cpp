#include "farm/accounts/account_store.h"
#include "farm/jobs/job_store.h"
#include "host/mainform/main_form.h"
#include "tests/e2e/client_windows.h"
#include "tests/e2e/running_client.h"

#include <QAction>
#include <QComboBox>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTableWidget>
#include <QtTest>

using farm::JobStatus;

namespace {

constexpr int StatusColumn = 4;

/// The farm's own job types, but each frame waits until the gate exists before it is rendered.
QByteArray GatedTypes(const QString& gate)
{
    QFile file(BesideProgram("farm/job_types.json"));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QJsonObject type = QJsonDocument::fromJson(file.readAll()).object()[QLatin1String("povray")].toObject();
    QJsonArray arguments = type[QLatin1String("arguments")].toArray();
    arguments.prepend(type[QLatin1String("program")]);
    arguments.prepend(
        QStringLiteral("while [ ! -e '%1' ]; do sleep 0.05; done; exec \"$0\" \"$@\"").arg(gate));
    arguments.prepend(QStringLiteral("-c"));
    type[QLatin1String("program")] = QStringLiteral("/bin/sh");
    type[QLatin1String("arguments")] = arguments;
    return QJsonDocument(QJsonObject {{QStringLiteral("povray"), type}}).toJson();
}

int RowOf(const QString& job)
{
    const QTableWidget* table = FindJobTable();
    for (int row = 0; table && row < table->rowCount(); ++row) {
        if (table->item(row, 0)->data(Qt::UserRole).toString() == job)
            return row;
    }
    return -1;
}

int ShownStatus(const QString& job)
{
    const int row = RowOf(job);
    return row < 0 ? -1 : FindJobTable()->item(row, StatusColumn)->data(Qt::UserRole).toInt();
}

bool CheckOnly(const QString& job)
{
    QTableWidget* table = FindJobTable();
    for (int row = 0; row < table->rowCount(); ++row)
        table->item(row, 0)->setCheckState(row == RowOf(job) ? Qt::Checked : Qt::Unchecked);
    return RowOf(job) >= 0;
}

/// Chooses an entry of the job table's context menu.
bool Choose(const char* text)
{
    const auto entries = FindMainWindow()->findChildren<QAction*>();
    for (QAction* entry : entries) {
        if (entry->text() == QLatin1String(text)) {
            entry->trigger();
            return true;
        }
    }
    return false;
}

} // namespace

class TestE2eActions : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_client = std::make_unique<RunningClient>(); }
    void cleanup() { m_client.reset(); }
    void ASonWaitsForItsParentAcrossARestart();
    void AnAccountInArrearsIsTold();
    void TheSearchDialogFindsWhatItAsksFor();

private:
    QString GatedFarm();
    bool ShowsJobs() const { return FindJobTable() && FindJobTable()->rowCount() > 0; }

    std::unique_ptr<RunningClient> m_client;
};

/// A program that is the farm, with job types that wait for the file "gate".
QString TestE2eActions::GatedFarm()
{
    const QString program = m_client->Path(QStringLiteral("farm.sh"));
    WriteFile(
        m_client->Path(QStringLiteral("types.json")), GatedTypes(m_client->Path(QStringLiteral("gate"))));
    WriteFile(program,
        QStringLiteral("#!/bin/sh\nexec '%1' \"$@\" --job-types '%2'\n")
            .arg(BesideProgram("quillstar-farmd"), m_client->Path(QStringLiteral("types.json")))
            .toUtf8());
    QFile::setPermissions(program, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return program;
}

void TestE2eActions::ASonWaitsForItsParentAcrossARestart()
{
    QVERIFY(QDir().mkdir(m_client->Path(QStringLiteral("farm"))));
    farm::Database database(m_client->Path(QStringLiteral("farm/farm.sqlite")), farm::Schema());
    farm::AccountStore accounts(database, 3600);
    farm::JobStore jobs(database);
    farm::NewJob job;
    job.account = accounts.Add({QStringLiteral("waiter"), QStringLiteral("waiter@example.org"),
        QStringLiteral("waiter"), false, 50'000'000, 0});
    job.type = QStringLiteral("povray");
    job.scene = QStringLiteral("ripples.pov");
    job.width = 64;
    job.height = 36;
    job.frames = {{1, 2}};
    job.name = QStringLiteral("son");
    const QString son = jobs.Add(job).id;
    job.name = QStringLiteral("parent");
    job.status = JobStatus::Paused;
    const QString parent = jobs.Add(job).id;
    const auto statusOf = [&](const QString& id) { return jobs.Find(job.account, id).status; };
    const QString gatedFarm = GatedFarm();

    QCOMPARE(m_client->Start(QStringLiteral("waiter"), gatedFarm), QString());
    QTRY_VERIFY_WITH_TIMEOUT(RowOf(son) >= 0 && RowOf(parent) >= 0, SignInTime);
    QTRY_COMPARE_WITH_TIMEOUT(statusOf(son), int(JobStatus::Running), RenderTime);
    QVERIFY(CheckOnly(son));
    const Soon confirmed([&] {
        const auto* candidates = Find<QTableWidget>("twtJobList");
        for (int row = 0; row < candidates->rowCount(); ++row) {
            if (candidates->item(row, 0)->data(Qt::UserRole) != parent)
                continue;
            candidates->item(row, 0)->setCheckState(Qt::Checked);
            Find<QPushButton>("btnOkSetParent")->click();
            return true;
        }
        return false;
    });
    QVERIFY(Choose("Set parent"));
    QVERIFY(confirmed.IsDone());
    QTRY_COMPARE_WITH_TIMEOUT(statusOf(son), int(JobStatus::Paused), RenderTime);

    m_client->End();
    QVERIFY(WriteFile(m_client->Path(QStringLiteral("gate")), {}));
    QCOMPARE(m_client->Start(QStringLiteral("waiter"), gatedFarm), QString());
    QTRY_VERIFY_WITH_TIMEOUT(RowOf(son) >= 0 && RowOf(parent) >= 0, SignInTime);
    QCOMPARE(ShownStatus(son), int(JobStatus::Paused));
    QVERIFY(CheckOnly(parent));
    Find<QPushButton>("btnRecover")->click();
    QTRY_COMPARE_WITH_TIMEOUT(statusOf(parent), int(JobStatus::Finished), RenderTime);
    QTRY_COMPARE_WITH_TIMEOUT(statusOf(son), int(JobStatus::Finished), RenderTime);
    Find<QPushButton>("btnPageOne")->click();
    QTRY_COMPARE(ShownStatus(son), int(JobStatus::Finished));
    QVERIFY(QFile::exists(m_client->Path(QStringLiteral("farm/jobs/%1/frame_0002.png").arg(son))));
    QFile dependencies(BesideProgram("data/embedded_waiter.ini"));
    QVERIFY(dependencies.open(QIODevice::ReadOnly));
    QVERIFY(!dependencies.readAll().contains(son.toLatin1()));
}

void TestE2eActions::AnAccountInArrearsIsTold()
{
    QCOMPARE(m_client->Start(QStringLiteral("arrears")), QString());
    QTRY_VERIFY_WITH_TIMEOUT(ShowsJobs(), SignInTime);
    const QString job = FindJobTable()->item(0, 0)->data(Qt::UserRole).toString();
    QCOMPARE(ShownStatus(job), int(JobStatus::Arrears));
    for (const char* button : {"btnRecover", "btnRestart", "btnFullRender"}) {
        QVERIFY(CheckOnly(job));
        const Soon told([] {
            QWidget* box = QApplication::activeModalWidget();
            if (!box)
                return false;
            const QString said = SaidBy(box);
            box->close();
            return said.contains(QLatin1String("Amount Overdue!"));
        });
        Find<QPushButton>(button)->click();
        QTRY_VERIFY(told.IsDone());
    }
    QCOMPARE(ShownStatus(job), int(JobStatus::Arrears));
}

void TestE2eActions::TheSearchDialogFindsWhatItAsksFor()
{
    QCOMPARE(m_client->Start(QStringLiteral("arrears")), QString());
    QTRY_VERIFY_WITH_TIMEOUT(ShowsJobs(), SignInTime);
    const int all = FindJobTable()->rowCount();
    Find<QComboBox>("cmbJobStatus")->setCurrentText(QStringLiteral("Arrears"));
    Find<QPushButton>("btnSearchJob")->click();
    QTRY_COMPARE(FindJobTable()->rowCount(), 2);
    Find<QComboBox>("cmbJobStatus")->setCurrentIndex(0);
    // The type's entry comes from the file that is shipped with the host.
    Find<QComboBox>("cmbJobType")->setCurrentText(QStringLiteral("POV-Ray"));
    QVERIFY(Find<QComboBox>("cmbJobType")->currentIndex() > 0);
    Find<QPushButton>("btnSearchJob")->click();
    QTRY_COMPARE(FindJobTable()->rowCount(), all);
}

QTEST_MAIN(TestE2eActions)
#include "tst_e2e_actions.moc"
