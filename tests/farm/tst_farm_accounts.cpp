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
            QCOMPARE(session->accountName, QStringLiteral("ann"));
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
        const QString first
            = data.accounts.SignIn(QStringLiteral("ann"), QStringLiteral("secret"), 1000)->token;
        const QString second
            = data.accounts.SignIn(QStringLiteral("ann"), QStringLiteral("secret"), 2000)->token;
        QVERIFY(first != second);
        QVERIFY(data.accounts.AccountOf(first, 1000 + 3599));
        QVERIFY(!data.accounts.AccountOf(first, 1000 + 3600));
        QVERIFY(data.accounts.AccountOf(second, 1000 + 3600));
        data.accounts.SignOut(second);
        QVERIFY(!data.accounts.AccountOf(second, 2000));
        QVERIFY(data.accounts.AccountOf(first, 2000));
        QVERIFY(!data.accounts.AccountOf(QString(), 2000));
    }

    void NoSecretIsOnTheDisk()
    {
        QTemporaryDir folder;
        FarmData data(folder.path());
        data.accounts.Add({QStringLiteral("bob"), QStringLiteral("bob@example.org"),
            QStringLiteral("correct-horse-battery"), false, 0, 0});
        const auto session
            = data.accounts.SignIn(QStringLiteral("bob"), QStringLiteral("correct-horse-battery"), 1000);
        const QByteArray disk = ReadFile(folder.filePath(QStringLiteral("farm.sqlite")))
            + ReadFile(folder.filePath(QStringLiteral("farm.sqlite-wal")));
        QVERIFY(disk.contains("bob@example.org"));
        QVERIFY(!disk.contains("correct-horse-battery"));
        QVERIFY(!disk.contains(session->token.toLatin1()));
    }

    void UsesRunOutAndComeBack()
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

    // A flood of keys must neither slow the limiter down nor set free those who are over the limit.
    void FullBucketsAreForgotten()
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
