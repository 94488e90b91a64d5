#include "account_store.h"
#include "client_host.h"
#include "client_windows.h"
#include "database.h"
#include "host_options.h"
#include "job_store.h"
#include "main_window.h"

#include <QAction>
#include <QComboBox>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTableWidget>
#include <QtTest>

#include <memory>

using farm::JobStatus;

namespace {

constexpr int SignInTime = 60000;  // ms; the farm may make its demo data first
constexpr int RenderTime = 120000; // ms
constexpr int StatusColumn = 4;

bool WriteFile(const QString& path, const QByteArray& content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

QString BesideProgram(const char* name)
{
    return QCoreApplication::applicationDirPath() + QLatin1Char('/') + QLatin1String(name);
}

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

/// Does something once, as soon as it can be done: also while a modal dialog runs. `step` says whether it was done.
class Soon
{
public:
    explicit Soon(std::function<bool()> step)
    {
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this, step = std::move(step)] {
            m_timer.stop(); // the step may open another dialog
            m_done = step();
            if (!m_done)
                m_timer.start();
        });
        m_timer.start(50);
    }

    bool IsDone() const { return m_done; }

private:
    QTimer m_timer;
    bool m_done = false;
};

} // namespace

class TestE2eActions : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void ASonWaitsForItsParentAcrossARestart();
    void AnAccountInArrearsIsTold();
    void TheSearchDialogFindsWhatItAsksFor();

private:
    QString Path(const char* name) const { return m_folder->filePath(QLatin1String(name)); }
    QString GatedFarm();
    QString StartClient(const char* account, const QString& farmProgram = {});
    bool ShowsJobs() const { return FindJobTable() && FindJobTable()->rowCount() > 0; }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<ClientHost> m_client;
};

void TestE2eActions::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
}

void TestE2eActions::cleanup()
{
    m_client.reset();
    // The window keeps what it remembers of an account beside the program.
    for (const char* file : {"data/embedded_waiter.ini", "Data/embedded_waiter.ini",
             "data/embedded_arrears.ini", "Data/embedded_arrears.ini"})
        QFile::remove(BesideProgram(file));
}

/// A program that is the farm, with job types that wait for the file "gate".
QString TestE2eActions::GatedFarm()
{
    const QString program = Path("farm.sh");
    WriteFile(Path("types.json"), GatedTypes(Path("gate")));
    WriteFile(program,
        QStringLiteral("#!/bin/sh\nexec '%1' \"$@\" --job-types '%2'\n")
            .arg(BesideProgram("quillstar-farmd"), Path("types.json"))
            .toUtf8());
    QFile::setPermissions(program, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return program;
}

/// Starts the client, with an account whose password is its name. Returns what went wrong.
QString TestE2eActions::StartClient(const char* account, const QString& farmProgram)
{
    WriteFile(Path("password"), account);
    QStringList arguments {QStringLiteral("quillstar"), QStringLiteral("--config"), Path("client.ini"),
        QStringLiteral("--data"), m_folder->path(), QStringLiteral("--user"), QLatin1String(account),
        QStringLiteral("--password-file"), Path("password")};
    if (!farmProgram.isEmpty())
        arguments += {QStringLiteral("--farm"), farmProgram};
    HostOptions options;
    QString error;
    if (!options.Parse(arguments, &error))
        return error;
    m_client = std::make_unique<ClientHost>(options);
    m_client->Start(&error);
    return error;
}

void TestE2eActions::ASonWaitsForItsParentAcrossARestart()
{
    QVERIFY(QDir(m_folder->path()).mkdir(QStringLiteral("farm")));
    farm::Database database(Path("farm/farm.sqlite"), farm::Schema());
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
    const auto statusOf = [&](const QString& id) { return jobs.Find(job.account, id)->status; };
    const QString gatedFarm = GatedFarm();

    QCOMPARE(StartClient("waiter", gatedFarm), QString());
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

    m_client.reset();
    QVERIFY(WriteFile(Path("gate"), {}));
    QCOMPARE(StartClient("waiter", gatedFarm), QString());
    QTRY_VERIFY_WITH_TIMEOUT(RowOf(son) >= 0 && RowOf(parent) >= 0, SignInTime);
    QCOMPARE(ShownStatus(son), int(JobStatus::Paused));
    QVERIFY(CheckOnly(parent));
    Find<QPushButton>("btnRecover")->click();
    QTRY_COMPARE_WITH_TIMEOUT(statusOf(parent), int(JobStatus::Finished), RenderTime);
    QTRY_COMPARE_WITH_TIMEOUT(statusOf(son), int(JobStatus::Finished), RenderTime);
    Find<QPushButton>("btnPageOne")->click();
    QTRY_COMPARE(ShownStatus(son), int(JobStatus::Finished));
    QVERIFY(QFile::exists(m_folder->filePath(QStringLiteral("farm/jobs/%1/frame_0002.png").arg(son))));
    QFile dependencies(BesideProgram("data/embedded_waiter.ini"));
    QVERIFY(dependencies.open(QIODevice::ReadOnly));
    QVERIFY(!dependencies.readAll().contains(son.toLatin1()));
}

void TestE2eActions::AnAccountInArrearsIsTold()
{
    QCOMPARE(StartClient("arrears"), QString());
    QTRY_VERIFY_WITH_TIMEOUT(ShowsJobs(), SignInTime);
    const QString job = FindJobTable()->item(0, 0)->data(Qt::UserRole).toString();
    QCOMPARE(ShownStatus(job), int(JobStatus::Arrears));
    for (const char* button : {"btnRecover", "btnRestart", "btnFullRender"}) {
        QVERIFY(CheckOnly(job));
        const Soon told([] {
            QWidget* box = QApplication::activeModalWidget();
            if (!box)
                return false;
            const QString said = box->findChild<QLabel*>(QStringLiteral("lblText"))->text()
                + box->findChild<QPlainTextEdit*>(QStringLiteral("txtDetail"))->toPlainText();
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
    QCOMPARE(StartClient("arrears"), QString());
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
