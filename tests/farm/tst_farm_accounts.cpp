#include "farm/accounts/account_admin.h"
#include "farm/base/errors.h"
#include "farm/jobs/job_actions.h"
#include "farm/rendering/render_queue.h"
#include "tests/farm/farm_fixture.h"

#include <QElapsedTimer>
#include <QScopeGuard>

#include <future>

using namespace farm;

namespace {

// Changes to the records of a restarted job whose two frames are finished, and the ledger's message about each. The
// first frame was also finished before the restart.
const std::tuple<const char*, const char*, const char*> Runs[] = {
    {"right", "", ""},
    {"deleted", "UPDATE jobs SET status = 5; DELETE FROM frames", ""},
    {"not charged again", "UPDATE jobs SET run = 3", " was not charged."},
    {"charged without an end", "UPDATE frames SET finished_at = NULL WHERE number = 2",
        " was charged but is not finished."},
    {"charged for no frame", "DELETE FROM frames WHERE number = 2", " was charged but is not finished."},
    {"charged twice in a run",
        "INSERT INTO charges(account, job, frame, core_milliseconds, amount, charged_at, run) SELECT "
        "account, "
        "job, frame, 0, 0, 100, run FROM charges WHERE frame = 2",
        " was charged more often than the job was begun."},
};

} // namespace

class AccountsTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }

    void SubscribersWaitForTheirAccount()
    {
        ChangeFeed feed;
        const auto wait = [&feed](std::int64_t account) {
            return std::async(std::launch::async, [subscription = feed.Subscribe(account)] {
                return subscription->Wait(std::chrono::hours(1));
            });
        };
        const auto isReady = [](const auto& waiting) {
            return waiting.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
        };
        auto woken = wait(1);
        auto told = wait(2);
        auto ended = wait(3);
        const auto end = qScopeGuard([&feed] { feed.Close(); });
        feed.Wake(1);
        EVENTUALLY(isReady(woken));
        QVERIFY(woken.get()->IsEmpty());
        feed.Announce(2, {{"7"_s}, true});
        EVENTUALLY(isReady(told));
        QCOMPARE(told.get()->jobs, QSet<QString> {"7"_s});
        QVERIFY(!isReady(ended));
        auto toldWithAll = wait(4);
        feed.AnnounceToAll({{}, true});
        EVENTUALLY(isReady(toldWithAll) && isReady(ended));
        // Changes that follow each other are told together.
        QElapsedTimer clock;
        clock.start();
        const auto busy = feed.Subscribe(5);
        for (const QString& job : {"1"_s, "2"_s}) {
            feed.Announce(5, {{job}});
            QCOMPARE(busy->Wait(std::chrono::hours(1))->jobs, QSet<QString> {job});
        }
        QVERIFY(clock.elapsed() >= ChangeFeed::Gap.count());
        ended = wait(3);
        feed.Close();
        EVENTUALLY(isReady(ended));
        QVERIFY(!ended.get());
    }

    void SignInNeedsNameAndPassword()
    {
        FarmData data(m_folder->path());
        for (const auto& name : {"ann"_s, "ANN"_s, "ann@EXAMPLE.org"_s}) {
            const auto session = data.accounts.SignIn(name, "secret"_s, 100);
            QVERIFY2(session, qPrintable(name));
            QCOMPARE(session->accountName, "ann"_s);
            QCOMPARE(data.accounts.AccountOf(session->token, 100), std::optional(data.account));
        }
        for (const auto& password : {"Secret"_s, QString()})
            QVERIFY2(!data.accounts.SignIn("ann"_s, password, 100), qPrintable(password));
        QVERIFY(!data.accounts.SignIn("eve"_s, "secret"_s, 100));
    }

    void ASessionEndsWithTimeOrSignOut()
    {
        FarmData data(m_folder->path());
        const QString first = data.accounts.SignIn("ann"_s, "secret"_s, 1000)->token;
        const QString second = data.accounts.SignIn("ann"_s, "secret"_s, 2000)->token;
        QVERIFY(data.accounts.AccountOf(first, 1000 + 3599));
        QVERIFY(!data.accounts.AccountOf(first, 1000 + 3600));
        QVERIFY(data.accounts.AccountOf(second, 1000 + 3600));
        data.accounts.SignOut(second, 2000);
        QVERIFY(!data.accounts.AccountOf(second, 2000));
        QVERIFY(data.accounts.AccountOf(first, 2000));
        data.accounts.SignIn("ann"_s, "secret"_s, 1000 + 3600);
        QCOMPARE(data.Count("SELECT count(*) FROM sessions"), 1);
        // Neither passwords nor tokens are on the disk.
        const QByteArray disk = ReadFile(Path("farm.sqlite"_s)) + ReadFile(Path("farm.sqlite-wal"_s));
        QVERIFY(disk.contains("ann@example.org"));
        for (const QByteArray& secret : {QByteArray("secret"), first.toLatin1(), second.toLatin1()})
            QVERIFY2(!disk.contains(secret), secret);
    }

    void TakesPlainNamesAndLongPasswords()
    {
        FarmData data(m_folder->path());
        AccountAdmin admin(data.database, {}, 0);
        const QString longest(64, QLatin1Char('n'));
        const QString secret(1024, QLatin1Char('p'));
        const std::tuple<QString, QString, bool> given[] = {{"b"_s, "12345678"_s, true},
            {longest, secret, true}, {"c"_s, "1234567"_s, false}, {"c"_s, secret + "p"_s, false},
            {"longname"_s, "LongName"_s, false}, {QString(), secret, false}, {longest + "n"_s, secret, false},
            {"c "_s, secret, false}, {"c\nd"_s, secret, false}};
        for (const auto& [name, password, isTaken] : given) {
            if (isTaken)
                admin.Add({name, {}, password});
            else
                QVERIFY_EXCEPTION_THROWN(admin.Add({name, {}, password}), InvalidInput);
        }
        QCOMPARE(admin.List().size(), std::size_t(3));
        QVERIFY(data.accounts.IsPassword("ann"_s, "secret"_s) && !data.accounts.IsPassword("ann"_s, "ann"_s));
    }

    void RecordsChangesAndEndsSessions()
    {
        FarmData data(m_folder->path());
        AccountAdmin admin(data.database, {}, 100);
        admin.Add({"bob"_s, {}, "a good secret"_s});
        const auto begin = [&data](const QString& password) {
            return data.accounts.SignIn("bob"_s, password, 100).value_or(Session {}).token;
        };
        QString token = begin("a good secret"_s);
        const auto isOver = [&] { return !data.accounts.AccountOf(token, 100); };
        admin.SetPassword("bob"_s, "another secret"_s);
        QVERIFY(isOver());
        token = begin("another secret"_s);
        admin.SetDisabled("bob"_s, true);
        admin.SetDisabled("bob"_s, false);
        QVERIFY(isOver());
        token = begin("another secret"_s);
        QVERIFY(!isOver());
        admin.RevokeSession(admin.Sessions({}).at(0).id);
        QVERIFY(isOver());
        data.accounts.SignOut(begin("another secret"_s), 100);
        begin("another secret"_s);
        QCOMPARE(admin.RevokeSessionsOf("bob"_s), 1);
        QCOMPARE(Ledger(data.database).Pay("bob"_s, 7, {}, 100), Micros(7));
        NewJob job = data.Job("job"_s);
        job.project = data.AddProject("Titles", "p", {"bob"_s});
        data.jobs.Add(job);
        data.projects.Rename("titles"_s, "Main"_s, 100);
        data.projects.Unassign("main"_s, "bob"_s, 100);
        QVERIFY_EXCEPTION_THROWN(data.projects.Remove("Main"_s, false, 100), Conflict);
        data.projects.Remove("p"_s, true, 100);
        QCOMPARE(data.Count("SELECT count(*) FROM jobs WHERE project IS NULL"), 1);
        QStringList actions;
        const auto entries = LastAuditEntries(data.database, {}, 99);
        for (const AuditEntry& entry : entries)
            actions.append(entry.action);
        QCOMPARE(actions.join(", "_s),
            "account add, session begin, account password, session begin, account disable, account enable, "
            "session begin, session revoke, session begin, session end, session begin, session revoke, "
            "account pay, project add, project assign, project rename, project unassign, project remove"_s);
    }

    void RoundsMoneyToCents()
    {
        const QMap<Micros, const char*> texts {{0, "0.00"}, {4999, "0.00"}, {5000, "0.01"},
            {12995000, "13.00"}, {-54000, "-0.05"}, {-4000, "0.00"}};
        for (auto text = texts.begin(); text != texts.end(); ++text)
            QCOMPARE(MoneyText(text.key()), QLatin1String(text.value()));
    }

    void TheLedgerAddsUp()
    {
        FarmData data(m_folder->path());
        Ledger ledger(data.database);
        const auto faults = [&ledger] {
            QStringList found;
            ledger.Check([&found](const QString& fault) { found.append(fault); });
            return found.join(QLatin1Char(' '));
        };
        const AddedJob job = data.jobs.Add(data.Job("job"_s, 2));
        AccountAdmin(data.database, {}, 0).SetPrice("ann"_s, 20'000);
        RenderQueue(data.database, data.feed, data.terms).Finish({job.key, 1}, {}, 1500, 100);
        QCOMPARE(data.Balance(), Micros(10'000'000 - 30'000));
        ledger.Pay("Ann"_s, -1'000'000, "back"_s, 200);
        QCOMPARE(data.Balance(), Micros(8'970'000));
        std::vector<Micros> amounts;
        ledger.ForEachEntry(
            {"ann"_s, 100, 200}, [&](const LedgerEntry& entry) { amounts.push_back(entry.amount); });
        QCOMPARE(amounts, (std::vector<Micros> {-30'000, -1'000'000}));
        ledger.ForEachJob({}, [&](const JobCharges& sum) { amounts.push_back(sum.amount); });
        QCOMPARE(amounts.back(), Micros(30'000));
        QCOMPARE(faults(), QString());
        for (const char* change : {"DELETE FROM charges", "UPDATE charges SET amount = 0",
                 "DELETE FROM payments", "UPDATE payments SET amount = 0", "DELETE FROM jobs"})
            QVERIFY_EXCEPTION_THROWN(data.Change(change), SQLite::Exception);
        data.Change(
            "UPDATE accounts SET balance = balance + 1; UPDATE frames SET finished_at = 1 WHERE number = 2; "
            "INSERT INTO charges(account, job, frame, core_milliseconds, amount, charged_at, price) "
            "SELECT account, job, 9, 1000, 19999, 0, 20000 FROM charges; "
            "INSERT INTO charges(account, job, frame, core_milliseconds, amount, charged_at, price) "
            "SELECT account, job, frame, core_milliseconds, amount, charged_at, price FROM charges WHERE "
            "frame = 1");
        const QString found = faults();
        for (const auto& word : {"account ann"_s, "at its price"_s, "not charged"_s, "more often"_s})
            QVERIFY2(found.contains(word), qPrintable(found));
        QVERIFY(!found.contains("another account"_s));
    }

    void TheLedgerKnowsTheRunsOfAJob_data() { AddRows(Runs); }
    void TheLedgerKnowsTheRunsOfAJob()
    {
        const auto& [name, change, fault] = Row(Runs);
        FarmData data(m_folder->path());
        const AddedJob job = data.jobs.Add(data.Job("job"_s, 2));
        for (int run = 1; run <= 2; ++run) {
            for (int frame = 1; frame <= run; ++frame)
                RenderQueue(data.database, data.feed, data.terms)
                    .Finish({job.key, frame, run}, {}, 1500, 100);
            if (run == 1)
                JobActions(data.database, data.feed, data.terms, [] {
                }).Apply(JobAction::Restart, data.account, {job.id}, 100);
        }
        data.Change(change);
        QStringList found;
        Ledger(data.database).Check([&found](const QString& text) { found.append(text); });
        QCOMPARE(found.join(u' ').section("%1"_s.arg(job.id), 1), QString::fromLatin1(fault));
    }

    void NobodyIsInArrearsWhoRendersForNothing()
    {
        FarmData data(m_folder->path());
        const std::int64_t bob = data.Add("bob", "x");
        const auto isInArrears = [&] {
            return data.database.Read(
                [&](SQLite::Database& connection) { return data.terms.IsInArrears(connection, bob); });
        };
        QVERIFY(isInArrears());
        AccountAdmin(data.database, {}, 0).SetPrice("bob"_s, 0);
        QVERIFY(!isInArrears());
        data.terms.Change(data.database, 0, 1, 5);
        QVERIFY(!isInArrears());
        AccountAdmin(data.database, {}, 0).SetPrice("bob"_s, 1);
        QVERIFY(isInArrears());
        const auto changed = LastAuditEntries(data.database, "all accounts"_s, 2);
        QCOMPARE(SentenceOf(changed.at(0)), "default price all accounts (0) by the farm from its settings"_s);
        QCOMPARE(changed.at(1).details, "1 bytes"_s);
    }

    void OldEntriesOfTheAuditGo()
    {
        FarmData data(m_folder->path());
        data.Change(
            "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 1400) INSERT INTO "
            "audit(at, who, origin, action, subject) SELECT i, '', '', '', '' FROM n");
        for (int rounds = 0; ForgetAuditEntries(data.database, 1200); ++rounds)
            QVERIFY(rounds < 10);
        QCOMPARE(data.Count("SELECT min(at) FROM audit"), 1201);
        while (ForgetAuditEntries(data.database, 5000)) { }
        // Its key is not used again.
        QCOMPARE(data.Count("SELECT sum(at) FROM audit"), 1400);
    }

private:
    QString Path(const QString& name) const { return m_folder->filePath(name); }

    std::unique_ptr<QTemporaryDir> m_folder;
};

QTEST_GUILESS_MAIN(AccountsTest)
#include "tst_farm_accounts.moc"
