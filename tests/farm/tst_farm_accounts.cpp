#include "farm/accounts/account_admin.h"
#include "farm/rendering/render_queue.h"
#include "tests/farm/farm_fixture.h"

using namespace farm;

class AccountsTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }

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

private:
    QString Path(const QString& name) const { return m_folder->filePath(name); }

    std::unique_ptr<QTemporaryDir> m_folder;
};

QTEST_GUILESS_MAIN(AccountsTest)
#include "tst_farm_accounts.moc"
