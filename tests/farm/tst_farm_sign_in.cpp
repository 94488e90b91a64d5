#include "farm/http/http_refusal.h"
#include "farm/http/sign_in_limits.h"
#include "tests/farm/farm_at_work.h"

#include <spdlog/sinks/ostream_sink.h>
#include <spdlog/spdlog.h>

#include <sstream>
#include <thread>

using namespace farm;

class SignInTest : public QObject
{
    Q_OBJECT

private slots:
    void SlowsGuessingDown()
    {
        std::ostringstream log;
        const auto logger = spdlog::default_logger();
        spdlog::set_default_logger(
            std::make_shared<spdlog::logger>("test", std::make_shared<spdlog::sinks::ostream_sink_mt>(log)));
        FarmAtWork farm;
        farm.settings.limits = {{6, 0.01}, {2, 0.01}, {2, 0.01}, {1, 0.01}};
        farm.settings.proxies = QStringList {"127.0.0.1"_s};
        farm.data.Add("bob", "b");
        farm.Start();
        const auto signIn
            = [&farm](const char* name, const char* password, const char* address = "10.0.0.1") {
                  const QJsonObject body {
                      {"username"_s, QLatin1String(name)}, {"password"_s, QLatin1String(password)}};
                  farm.signIn = farm.Send(
                      "POST", "/session"_s, QJsonDocument(body).toJson(), {{"X-Forwarded-For", address}});
                  return farm.signIn.status;
              };
        QCOMPARE(signIn("Ann", "x"), 401);
        QCOMPARE(signIn("Ann", "x"), 401);
        QCOMPARE(signIn("ann", "secret"), 429);
        QCOMPARE(farm.signIn.Error(), "too_many_requests"_s);
        QVERIFY(farm.signIn.retryAfter.toInt() > 0);
        // Nobody else is locked out.
        QCOMPARE(signIn("ann", "secret", "10.0.0.2"), 200);
        for (int status : {200, 200, 200, 429})
            QCOMPARE(signIn("bob", "b"), status);
        farm.End();
        spdlog::set_default_logger(logger);
        QCOMPARE(QByteArray::fromStdString(log.str()).count("sign-ins from 10.0.0.1 are refused"), 1);
    }

    // Each password that waits to be compared would hold a thread.
    void SignInsDoNotQueueForLong()
    {
        const QByteArray body = R"({"username":"ann","password":"x"})";
        FarmAtWork farm;
        farm.settings.limits = {{1000, 100}, {1000, 100}, {1000, 100}, {1000, 100}};
        farm.Start();
        const QByteArray request = "POST /api/v1/session HTTP/1.1\r\nHost: x\r\nContent-Length: "
            + QByteArray::number(body.size()) + "\r\n\r\n" + body;
        std::vector<std::unique_ptr<QTcpSocket>> clients(60);
        for (auto& client : clients)
            client = farm.SendRaw(request);
        QMap<QByteArray, int> answers;
        for (const auto& client : clients) {
            QVERIFY(
                QTest::qWaitFor([&] { return client->state() == QTcpSocket::UnconnectedState; }, Patience));
            ++answers[client->readLine().mid(9, 3)];
        }
        QCOMPARE(answers["401"] + answers["503"], int(clients.size()));
        QVERIFY(answers["401"] >= 32 && answers["503"] > 0);
    }

    // Guesses from many addresses cannot keep the owner of an account out, either.
    void SlowsGuessesFromManyAddressesDown()
    {
        RequestLimits rates;
        rates.failedSignInsByName = {2, 0.0001};
        rates.slowSignIn = std::chrono::milliseconds(50);
        SignInLimits limits(rates);
        QElapsedTimer clock;
        clock.start();
        for (const char* address : {"10.0.0.1", "10.0.0.2", "10.0.0.3"})
            limits.Admit("ann"_s, address, false);
        QVERIFY(clock.elapsed() >= 50);
        rates.slowSignIn = std::chrono::hours(1);
        SignInLimits patient(rates);
        for (int attempt = 0; attempt < 5; ++attempt)
            patient.Admit("ann"_s, "10.0.0.1", true);
    }

    // However many guess, only those who have failed before are refused.
    void ManyWhoGuessKeepNobodyElseOut()
    {
        RequestLimits rates;
        rates.failedSignInsByName = {1, 0.0001};
        rates.slowSignIn = std::chrono::milliseconds(500);
        SignInLimits limits(rates);
        std::atomic<int> refusals {0};
        const auto guess = [&](const QString& name, const QString& address) {
            try {
                limits.Admit(name, address.toLatin1(), false);
            } catch (const HttpRefusal&) {
                ++refusals;
            }
        };
        for (bool areKnown : {false, true}) {
            std::vector<std::thread> guesses;
            for (int guesser = 1; guesser <= 12; ++guesser)
                guesses.emplace_back(guess, "ann"_s, "10.0.1.%1"_s.arg(guesser));
            for (std::thread& thread : guesses)
                thread.join();
            QCOMPARE(refusals > 0, areKnown);
        }
    }
};

QTEST_GUILESS_MAIN(SignInTest)
#include "tst_farm_sign_in.moc"
