#include "farm/http/rate_limiter.h"
#include "tests/farm/farm_fixture.h"

#include <QtTest>

using namespace farm;

class AccountsTest : public QObject
{
    Q_OBJECT

private slots:
    void SignInNeedsNameAndPassword()
    {
        QTemporaryDir folder;
        FarmData data(folder.path());
        const auto signIn = [&](const char* name, const char* password) {
            return data.accounts.SignIn(QLatin1String(name), QLatin1String(password), 100);
        };
        for (const char* name : {"ann", "ANN", "ann@EXAMPLE.org"}) {
            const auto session = signIn(name, "secret");
            QVERIFY2(session, name);
            QCOMPARE(session->accountName, "ann"_s);
            QCOMPARE(data.accounts.AccountOf(session->token, 100), std::optional(data.account));
        }
        for (const char* password : {"Secret", "", "secret "})
            QVERIFY2(!signIn("ann", password), password);
        for (const char* name : {"eve", "", "ann' --"})
            QVERIFY2(!signIn(name, "secret"), name);
    }

    void ASessionEndsWithTimeOrSignOut()
    {
        QTemporaryDir folder;
        FarmData data(folder.path());
        const QString first = data.accounts.SignIn("ann"_s, "secret"_s, 1000)->token;
        const QString second = data.accounts.SignIn("ann"_s, "secret"_s, 2000)->token;
        QVERIFY(first != second);
        QVERIFY(data.accounts.AccountOf(first, 1000 + 3599));
        QVERIFY(!data.accounts.AccountOf(first, 1000 + 3600));
        QVERIFY(data.accounts.AccountOf(second, 1000 + 3600));
        data.accounts.SignOut(second);
        QVERIFY(!data.accounts.AccountOf(second, 2000));
        QVERIFY(data.accounts.AccountOf(first, 2000));
        QVERIFY(!data.accounts.AccountOf(QString(), 2000));
        data.accounts.SignIn("ann"_s, "secret"_s, 1000 + 3600);
        QCOMPARE(data.Count("SELECT count(*) FROM sessions"), 1);
    }

    void KeepsNoSecretOnTheDisk()
    {
        QTemporaryDir folder;
        FarmData data(folder.path());
        data.accounts.Add({"bob"_s, "bob@example.org"_s, "correct-horse-battery"_s, false, 0, 0});
        const auto session = data.accounts.SignIn("bob"_s, "correct-horse-battery"_s, 1000);
        const QByteArray disk
            = ReadFile(folder.filePath("farm.sqlite"_s)) + ReadFile(folder.filePath("farm.sqlite-wal"_s));
        QVERIFY(disk.contains("bob@example.org"));
        QVERIFY(!disk.contains("correct-horse-battery"));
        QVERIFY(!disk.contains(session->token.toLatin1()));
    }

    void LimitsUsesPerTime()
    {
        using namespace std::chrono_literals;
        const RateLimiter::Clock::time_point start {};
        RateLimiter limiter({2, 0.125});
        QVERIFY(!limiter.Take("ann", start));
        QVERIFY(!limiter.Take("ann", start));
        QCOMPARE(limiter.Take("ann", start), std::optional(8));
        QCOMPARE(limiter.Take("ann", start + 4s), std::optional(4));
        QVERIFY(!limiter.Take("bob", start));
        QVERIFY(!limiter.Take("ann", start + 11s));
        QVERIFY(limiter.Take("ann", start + 11s));
        limiter.GiveBack("ann");
        QVERIFY(!limiter.Take("ann", start + 11s));
        QVERIFY(!limiter.Take("ann", start + 1h));
        QVERIFY(!limiter.Take("ann", start + 1h));
        QVERIFY(limiter.Take("ann", start + 1h));
    }

    // A flood of keys must not make the limiter forget who is over the limit.
    void ForgetsFullBucketsOnly()
    {
        const RateLimiter::Clock::time_point start {};
        RateLimiter limiter({1, 0.001});
        QVERIFY(!limiter.Take("ann", start));
        for (int key = 0; key < 20000; ++key)
            limiter.Take(std::to_string(key), start + std::chrono::milliseconds(key));
        QVERIFY(limiter.Take("ann", start + std::chrono::seconds(20)));
    }
};

QTEST_GUILESS_MAIN(AccountsTest)
#include "tst_farm_accounts.moc"
