// Measures lists and actions of an account with few and with very many jobs, through HTTP. Both should cost the same.
#include "bench/farm_history.h"
#include "farm/base/local_time.h"
#include "farm/farm.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QUrl>

#include <httplib.h>
#include <spdlog/spdlog.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdio>
#include <random>
#include <thread>

namespace {

constexpr int MostRounds = 200;
constexpr int FewestRounds = 5;
constexpr qint64 LongestMeasurement = 4000; // ms
constexpr int ListingClients = 15;
constexpr std::chrono::milliseconds ListingPause {50};
constexpr int PageSize = 18;
constexpr qint64 SecondsPerDay = 86400;

/// Costs in milliseconds.
struct Cost
{
    double median = 0;
    double p99 = 0;
};

/// In the order in which they were measured.
using Costs = std::vector<std::pair<std::string, Cost>>;

class Client
{
public:
    explicit Client(const std::string& url, const char* account)
        : m_client(url)
    {
        m_client.set_read_timeout(std::chrono::seconds {60});
        const auto answer = m_client.Post("/api/v1/session",
            std::string(R"({"username":")") + account + R"(","password":"secret"})", "application/json");
        const QJsonObject body = QJsonDocument::fromJson(Checked(answer)).object();
        m_headers.emplace("Authorization",
            "Bearer " + body[QLatin1String("data")][QLatin1String("token")].toString().toStdString());
    }

    QByteArray Get(const std::string& path) { return Checked(m_client.Get("/api/v1" + path, m_headers)); }

    QByteArray Post(const std::string& path, const std::string& body)
    {
        return Checked(m_client.Post("/api/v1" + path, m_headers, body, "application/json"));
    }

    QJsonArray List(int page, const QByteArray& conditions = {})
    {
        const QByteArray answer
            = Get("/jobs?page=" + std::to_string(page) + "&pageSize=" + std::to_string(PageSize)
                + "&conditions=" + QUrl::toPercentEncoding(QString::fromUtf8(conditions)).toStdString());
        const QJsonObject data = QJsonDocument::fromJson(answer).object()[QLatin1String("data")].toObject();
        return data[QLatin1String("list")].toArray();
    }

    void Apply(const char* action, const QString& id)
    {
        Post(std::string("/jobs/") + action, R"({"ids":[")" + id.toStdString() + R"("]})");
    }

private:
    static QByteArray Checked(const httplib::Result& answer)
    {
        if (!answer || answer->status != 200)
            throw std::runtime_error(answer ? answer->body : "the farm does not answer");
        return QByteArray::fromStdString(answer->body);
    }

    httplib::Client m_client;
    httplib::Headers m_headers;
};

class Meter
{
public:
    /// @param work is given the number of the round.
    template <typename Work>
    void Measure(const std::string& name, Work work)
    {
        Measure(
            name, [](int) {}, work);
    }

    /// @param prepare is not part of the cost.
    template <typename Prepare, typename Work>
    void Measure(const std::string& name, Prepare prepare, Work work)
    {
        std::vector<double> times;
        QElapsedTimer all;
        all.start();
        for (int round = 0;
             round < MostRounds && (round < FewestRounds || all.elapsed() < LongestMeasurement); ++round) {
            prepare(round);
            QElapsedTimer clock;
            clock.start();
            work(round);
            times.push_back(double(clock.nsecsElapsed()) / 1e6);
        }
        std::sort(times.begin(), times.end());
        const auto at = [&times](double part) {
            return times.at(std::size_t(std::lround(part * double(times.size() - 1))));
        };
        m_costs.emplace_back(name, Cost {at(0.5), at(0.99)});
        std::fprintf(stderr, "  %-48s %9.2f %9.2f\n", name.c_str(), at(0.5), at(0.99));
    }

    void Once(const std::string& name, const std::function<void()>& work)
    {
        QElapsedTimer clock;
        clock.start();
        work();
        const double time = double(clock.nsecsElapsed()) / 1e6;
        m_costs.emplace_back(name, Cost {time, time});
        std::fprintf(stderr, "  %-48s %9.2f\n", name.c_str(), time);
    }

    const Costs& All() const { return m_costs; }

private:
    Costs m_costs;
};

QByteArray Condition(const char* key, const QString& value)
{
    return QJsonDocument(QJsonObject {{QLatin1String(key), value}}).toJson(QJsonDocument::Compact);
}

QByteArray Within(const char* least, const char* most, qint64 begin)
{
    const QJsonObject object {{QLatin1String(least), farm::TimeText(begin)},
        {QLatin1String(most), farm::TimeText(begin + SecondsPerDay)}};
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

class Bench
{
public:
    Bench(const FarmHistory& history, const QString& url)
        : m_history(history)
        , m_url(url.toStdString())
    {
    }

    Costs Run()
    {
        m_meter.Once("sign-in, the first one", [this] { m_ann = std::make_unique<Client>(m_url, "ann"); });
        m_meter.Once("sign-in, the next one", [this] { m_bob = std::make_unique<Client>(m_url, "bob"); });
        Pages();
        Names();
        Filters();
        Actions();
        Others();
        return m_meter.All();
    }

private:
    int AnyJob() { return std::uniform_int_distribution<int>(1, m_history.jobs)(m_random); }

    void Lists(const char* name, int page, const QByteArray& conditions)
    {
        m_meter.Measure(name, [&](int) { m_ann->List(page, conditions); });
    }

    void Pages()
    {
        const int pages = m_history.jobs / PageSize;
        m_meter.Once("first page, the first time", [this] { m_ann->List(1); });
        Lists("first page", 1, {});
        Lists("middle page", pages / 2, {});
        m_meter.Measure("any page", [&](int) { m_ann->List(1 + AnyJob() / PageSize); });
        Lists("last page", pages - 10, {});
    }

    void Names()
    {
        const QByteArray many = Condition("job_name", QStringLiteral("LIGHT"));
        m_meter.Once("name with many hits, the first time", [&] { m_ann->List(1, many); });
        Lists("name with many hits", 1, many);
        Lists("name with many hits, middle page", m_history.jobs / 5 / PageSize / 2, many);
        const auto change = [this](int round) { m_ann->Apply("stop", Waiting(round)); };
        m_meter.Measure("name with many hits, after a change", change, [&](int) { m_ann->List(1, many); });
        Lists("name of two letters", 1, Condition("job_name", QStringLiteral("ho")));
        m_meter.Measure("name of one job", [&](int) {
            m_ann->List(
                1, Condition("job_name", QString::number(AnyJob()).rightJustified(7, QLatin1Char('0'))));
        });
        m_meter.Measure("name without a hit",
            [&](int round) { m_ann->List(1, Condition("job_name", QStringLiteral("shot_q%1").arg(round))); });
    }

    void Filters()
    {
        Lists("status: failed", 1, Condition("status", QStringLiteral("7")));
        Lists("status: finished, middle page", m_history.jobs / PageSize / 3,
            Condition("status", QStringLiteral("4")));
        Lists("status: pending, of which there are none", 1, Condition("status", QStringLiteral("3")));
        Lists("project", 1, Condition("pool_id", QStringLiteral("pool-2")));
        Lists("project, middle page", m_history.jobs / PageSize / 14,
            Condition("pool_id", QStringLiteral("pool-2")));
        Lists("project, type and status", 1, R"({"pool_id":"pool-2","job_type":"maya","status":"2"})");
        m_meter.Measure("submitted on one day", [&](int) {
            m_ann->List(1, Within("start_min_time", "start_max_time", m_history.SubmittedAt(AnyJob())));
        });
        m_meter.Measure("ended on one day", [&](int) {
            m_ann->List(1, Within("end_min_time", "end_max_time", m_history.SubmittedAt(AnyJob())));
        });
        m_meter.Measure("submitted before a day, middle page", [&](int) {
            const int last = AnyJob();
            m_ann->List(1 + last / PageSize / 2,
                Condition("start_max_time", farm::TimeText(m_history.SubmittedAt(last))));
        });
    }

    void Actions()
    {
        m_meter.Measure("one job", [&](int round) { m_ann->Get("/jobs/" + Waiting(round).toStdString()); });
        m_meter.Measure("stop one job",
            [&](int round) { m_ann->Apply("stop", Waiting(FarmHistory::WaitingJobs - 1 - round)); });
        m_meter.Measure("restart one job", [&](int round) { m_ann->Apply("restart", Waiting(round)); });
        m_meter.Measure("delete one job", [&](int round) { m_ann->Apply("delete", Waiting(round)); });
    }

    void Others()
    {
        const auto list = [this](int) { m_bob->List(2); };
        m_meter.Measure("another account's list, idle", list);
        // One after another, because a farm refuses sign-ins when many wait at once.
        std::vector<std::unique_ptr<Client>> clients;
        clients.reserve(ListingClients);
        for (int number = 0; number < ListingClients; ++number)
            clients.push_back(std::make_unique<Client>(m_url, "ann"));
        std::atomic<bool> ends = false;
        std::vector<std::thread> threads;
        threads.reserve(ListingClients);
        for (int number = 0; number < ListingClients; ++number) {
            threads.emplace_back([this, number, &client = *clients[std::size_t(number)], &ends] {
                for (int page = 1; !ends; page += m_history.jobs / PageSize / 7) {
                    client.List(1 + (page + number) % (m_history.jobs / PageSize));
                    std::this_thread::sleep_for(ListingPause);
                }
            });
        }
        m_meter.Measure("another account's list, while 15 clients list", list);
        ends = true;
        for (std::thread& thread : threads)
            thread.join();
    }

    /// The id of one of the newest jobs, which wait until an action takes them.
    QString Waiting(int index)
    {
        if (m_waiting.isEmpty()) {
            for (int page = 1; m_waiting.size() < FarmHistory::WaitingJobs; ++page) {
                const QJsonArray jobs = m_ann->List(page);
                for (const QJsonValue& job : jobs)
                    m_waiting.append(job[QLatin1String("job_id")].toString());
            }
        }
        return m_waiting.at(index);
    }

    const FarmHistory& m_history;
    std::string m_url;
    std::mt19937 m_random {1};
    std::unique_ptr<Client> m_ann;
    std::unique_ptr<Client> m_bob;
    QStringList m_waiting;
    Meter m_meter;
};

Costs MeasureFarm(int jobs)
{
    std::fprintf(stderr, "%d jobs\n", jobs);
    const QTemporaryDir folder;
    const FarmHistory history {folder.path(), jobs};
    QElapsedTimer clock;
    clock.start();
    history.Write();
    std::fprintf(stderr, "  written in %.1f s\n", double(clock.restart()) / 1000);
    // No type has a renderer, so all jobs wait.
    QFile types(folder.filePath(QStringLiteral("types.json")));
    types.open(QIODevice::WriteOnly);
    types.write(R"({"povray":{"program":"no-such-renderer","arguments":[],"suffix":"png"}})");
    types.close();
    farm::FarmSettings settings;
    settings.dataFolder = folder.path();
    settings.sceneFolder = folder.path();
    settings.jobTypesFile = types.fileName();
    settings.demo = false;
    for (farm::Rate* rate : {&settings.limits.signInsByAddress, &settings.limits.failedSignInsByName,
             &settings.limits.requestsByAccount, &settings.limits.transfersByAccount})
        *rate = {1e9, 1e9};
    const farm::Farm farm(settings);
    std::fprintf(stderr, "  upgraded and started in %.1f s\n", double(clock.restart()) / 1000);
    Costs costs;
    std::exception_ptr failure;
    std::atomic<bool> isDone = false;
    std::thread bench([&] {
        try {
            costs = Bench(history, farm.Url()).Run();
        } catch (...) {
            failure = std::current_exception();
        }
        isDone = true;
    });
    while (!isDone)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 50);
    bench.join();
    if (failure)
        std::rethrow_exception(failure);
    return costs;
}

void PrintTable(const Costs& few, const Costs& many, int fewJobs, int manyJobs)
{
    std::printf("| Request | %d jobs: median | p99 | %d jobs: median | p99 | Ratio of p99 "
                "|\n|---|---|---|---|---|---|\n",
        fewJobs, manyJobs);
    for (std::size_t row = 0; row < few.size(); ++row) {
        const auto& [name, small] = few.at(row);
        const Cost large = many.at(row).second;
        std::printf("| %s | %.1f ms | %.1f ms | %.1f ms | %.1f ms | %.1f |\n", name.c_str(), small.median,
            small.p99, large.median, large.p99, large.p99 / small.p99);
    }
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    spdlog::set_level(spdlog::level::err);
    QCommandLineParser parser;
    parser.addPositionalArgument(QStringLiteral("jobs"), QStringLiteral("Two numbers of jobs to compare."));
    parser.addHelpOption();
    parser.process(application);
    const QStringList sizes = parser.positionalArguments();
    const int fewJobs = sizes.value(0, QStringLiteral("10000")).toInt();
    const int manyJobs = sizes.value(1, QStringLiteral("1000000")).toInt();
    try {
        const Costs few = MeasureFarm(fewJobs);
        PrintTable(few, MeasureFarm(manyJobs), fewJobs, manyJobs);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "bench_database: %s\n", error.what());
        return 1;
    }
    return 0;
}
