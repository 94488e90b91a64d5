#include "farm/base/money.h"
#include "farm/base/schema.h"
#include "farm/data_lock.h"
#include "farm/jobs/job_actions.h"
#include "farm/rendering/render_queue.h"
#include "tests/farm/farm_fixture.h"

#include <QtTest>

using namespace farm;

class StorageTest : public QObject
{
    Q_OBJECT

private slots:
    void MoneyIsRoundedToCents()
    {
        const QMap<Micros, const char*> texts {{0, "0.00"}, {4999, "0.00"}, {5000, "0.01"},
            {12995000, "13.00"}, {-54000, "-0.05"}, {-4000, "0.00"}};
        for (auto text = texts.begin(); text != texts.end(); ++text)
            QCOMPARE(MoneyText(text.key()), QLatin1String(text.value()));
    }

    void AnInnerChangeFailsWithTheOuterOne()
    {
        QTemporaryDir folder;
        FarmData data(folder.path());
        const auto failing = [&data](SQLite::Database&) {
            data.jobs.Add(data.Job(QStringLiteral("half done")));
            throw std::runtime_error("stop");
        };
        QVERIFY_EXCEPTION_THROWN(data.database.Write(failing), std::runtime_error);
        QCOMPARE(data.jobs.List(data.account, {}, 1, 10).total, std::int64_t(0));
    }

    void DataOfANewerFarmAreRefused()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("farm.sqlite"));
        {
            Database database(path, farm::Schema());
            database.Read([](SQLite::Database& connection) { connection.exec("PRAGMA user_version = 999"); });
        }
        QVERIFY_EXCEPTION_THROWN(Database(path, farm::Schema()), std::runtime_error);
    }

    void DataOfAnOlderFarmAreTakenOver_data()
    {
        QTest::addColumn<int>("version");
        for (int version = 1; version < int(farm::Schema().size()); ++version)
            QTest::addRow("version %d", version) << version;
    }

    void DataOfAnOlderFarmAreTakenOver()
    {
        QFETCH(int, version);
        QTemporaryDir folder;
        storage::Migrations old = farm::Schema();
        old.resize(std::size_t(version));
        // A prerender job of five frames, of which the first is finished.
        Database(folder.filePath(QStringLiteral("farm.sqlite")), old).Read([](SQLite::Database& connection) {
            connection.exec(
                "INSERT INTO accounts VALUES (1, 'ann', 'ann@example.org', '', 0, 5000000, 0); "
                "INSERT INTO jobs(key, id, account, number, type, name, folded_name, business, status, "
                "scene, "
                "width, height, submitted_at) "
                "VALUES (7, 'old', 1, 1, 'povray', 'old', 'old', 1, 0, 'scene.txt', 32, 18, 0); "
                "INSERT INTO frames(job, number, finished_at) VALUES (7, 1, 9), (7, 3, NULL), (7, 5, NULL)");
        });
        FarmData data(folder.path());
        const auto next = RenderQueue(data.database, DefaultPrice).Next({QStringLiteral("povray")}, 0, {});
        QVERIFY(next);
        QCOMPARE(next->jobId, QStringLiteral("old"));
        QCOMPARE(next->Number(), 3);
        QCOMPARE(next->FrameSpan(), 5);
        QVERIFY(data.jobs.Plan(data.account, next->jobId)->prerender);
        JobActions(data.database, [] {}).Do(JobAction::FullRender, data.account, {next->jobId}, 10);
        QCOMPARE(data.Only().progress, 20);
        QCOMPARE(data.Only().status, int(JobStatus::ToFullRender));
    }

    void AFolderServesOneFarmAtATime()
    {
        QTemporaryDir folder;
        {
            const DataLock first(folder.path(), 0);
            QVERIFY_EXCEPTION_THROWN(DataLock(folder.path(), 0), std::runtime_error);
        }
        const DataLock next(folder.path(), 0);
    }
};

QTEST_GUILESS_MAIN(StorageTest)
#include "tst_farm_storage.moc"
