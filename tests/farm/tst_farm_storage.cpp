#include "data_lock.h"
#include "farm_fixture.h"
#include "money.h"
#include "render_queue.h"
#include "schema.h"

#include <QtTest>

using namespace farm;

class StorageTest : public QObject
{
    Q_OBJECT

private slots:
    void MoneyIsRoundedToCents_data();
    void MoneyIsRoundedToCents();
    void AFailedChangeLeavesNothingBehind();
    void AnInnerChangeFailsWithTheOuterOne();
    void DataOfANewerFarmAreRefused();
    void DataOfAnOlderFarmAreTakenOver();
    void AFolderServesOneFarmAtATime();
};

void StorageTest::MoneyIsRoundedToCents_data()
{
    QTest::addColumn<qint64>("micros");
    QTest::addColumn<QString>("text");
    QTest::newRow("nothing") << qint64(0) << QStringLiteral("0.00");
    QTest::newRow("less than half a cent") << qint64(4999) << QStringLiteral("0.00");
    QTest::newRow("half a cent") << qint64(5000) << QStringLiteral("0.01");
    QTest::newRow("carried over") << qint64(12'995'000) << QStringLiteral("13.00");
    QTest::newRow("debt") << qint64(-54'000) << QStringLiteral("-0.05");
    QTest::newRow("debt below a cent") << qint64(-4000) << QStringLiteral("0.00");
}

void StorageTest::MoneyIsRoundedToCents()
{
    QFETCH(qint64, micros);
    QTEST(MoneyText(micros), "text");
}

void StorageTest::AFailedChangeLeavesNothingBehind()
{
    QTemporaryDir folder;
    FarmData data(folder.path());
    const NewAccount twin {
        QStringLiteral("ANN"), QStringLiteral("other@example.org"), QString(), false, 0, 0};
    QVERIFY_EXCEPTION_THROWN(data.accounts.Add(twin), SQLite::Exception);
    NewJob orphan = data.Job(QStringLiteral("orphan"), 3);
    orphan.account = 4711;
    QVERIFY_EXCEPTION_THROWN(data.jobs.Add(orphan), SQLite::Exception);
    data.jobs.Add(data.Job(QStringLiteral("next")));
    QCOMPARE(data.Only().number, std::int64_t(1));
}

void StorageTest::AnInnerChangeFailsWithTheOuterOne()
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

void StorageTest::DataOfANewerFarmAreRefused()
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("farm.sqlite"));
    {
        Database database(path, farm::Schema());
        database.Read([](SQLite::Database& connection) { connection.exec("PRAGMA user_version = 999"); });
    }
    QVERIFY_EXCEPTION_THROWN(Database(path, farm::Schema()), std::runtime_error);
}

void StorageTest::DataOfAnOlderFarmAreTakenOver()
{
    QTemporaryDir folder;
    QString id;
    {
        FarmData data(folder.path());
        id = data.jobs.Add(data.Job(QStringLiteral("old"), 2)).id;
        data.database.Read([](SQLite::Database& connection) {
            connection.exec(
                "DROP VIEW open_jobs; DROP INDEX jobs_to_render; ALTER TABLE jobs DROP COLUMN run; "
                "CREATE INDEX open_jobs ON jobs(key) WHERE status IN (0, 1); PRAGMA user_version = 1");
        });
    }
    FarmData data(folder.path());
    QCOMPARE(data.Only().id, id);
    const auto next = RenderQueue(data.database, usualPrice).Next({QStringLiteral("povray")}, 0, {});
    QVERIFY(next);
    QCOMPARE(next->jobId, id);
}

void StorageTest::AFolderServesOneFarmAtATime()
{
    QTemporaryDir folder;
    {
        const DataLock first(folder.path(), 0);
        QVERIFY_EXCEPTION_THROWN(DataLock(folder.path(), 0), std::runtime_error);
    }
    const DataLock next(folder.path(), 0);
}

QTEST_GUILESS_MAIN(StorageTest)
#include "tst_farm_storage.moc"
