#include "bench/comparison.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>

#include <algorithm>
#include <cstdio>
#include <ctime>

namespace {

constexpr int Blocks = 9;
constexpr int RunsPerBlock = 7;
constexpr double BlockTime = 300'000; // microseconds; the run under way then is the last of its block
constexpr double NanosecondsPerMicrosecond = 1000;

using Costs = std::vector<double>;

void RunBlock(const Side& side, Costs& costs)
{
    if (side.prepare)
        side.prepare();
    const double blockStart = ProcessorTime();
    for (int run = 0; run < RunsPerBlock && ProcessorTime() - blockStart < BlockTime; ++run) {
        const double start = ProcessorTime();
        side.act();
        costs.push_back(ProcessorTime() - start);
        if (side.settle)
            side.settle();
    }
}

double Median(Costs costs)
{
    const auto middle = costs.begin() + std::ptrdiff_t(costs.size() / 2);
    std::nth_element(costs.begin(), middle, costs.end());
    return *middle;
}

} // namespace

double ProcessorTime()
{
    timespec time {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e6 + double(time.tv_nsec) / NanosecondsPerMicrosecond;
}

void CostTable::Compare(
    const QString& name, std::optional<double> goal, const Side& reference, const Side& measured)
{
    Costs first;
    Costs second;
    for (int block = 0; block < Blocks; ++block) {
        RunBlock(reference, first);
        RunBlock(measured, second);
    }
    const double base = Median(first);
    const double cost = Median(second);
    Add({name, goal, cost / base, QStringLiteral("x"), base, cost});
}

void CostTable::Note(const QString& name, std::optional<double> goal, double figure, const QString& unit)
{
    Add({name, goal, figure, unit});
}

void CostTable::Add(const Row& row)
{
    std::printf("%-56s", qUtf8Printable(row.name));
    if (row.reference > 0)
        std::printf(" %10.1f us against %10.1f us", row.measured, row.reference);
    else
        std::printf(" %36s", "");
    std::printf(" %9.4f %s", row.figure, qUtf8Printable(row.unit));
    if (row.goal)
        std::printf("   goal %g: %s", *row.goal, row.figure <= *row.goal ? "met" : "MISSED");
    std::printf("\n");
    std::fflush(stdout);
    m_rows.push_back(row);
}

int CostTable::Conclude(const QStringList& arguments) const
{
    QJsonArray rows;
    bool isMet = true;
    for (const Row& row : m_rows) {
        QJsonObject object {{QStringLiteral("name"), row.name}, {QStringLiteral("figure"), row.figure},
            {QStringLiteral("unit"), row.unit}};
        if (row.reference > 0) {
            object.insert(QStringLiteral("reference_us"), row.reference);
            object.insert(QStringLiteral("measured_us"), row.measured);
        }
        if (row.goal) {
            object.insert(QStringLiteral("goal"), *row.goal);
            isMet = isMet && row.figure <= *row.goal;
        }
        rows.append(object);
    }
    const int option = arguments.indexOf(QStringLiteral("--json"));
    if (option >= 0) {
        QFile file(arguments.value(option + 1));
        if (!file.open(QIODevice::WriteOnly) || file.write(QJsonDocument(rows).toJson()) < 0) {
            std::fprintf(stderr, "%s cannot be written: %s\n", qUtf8Printable(file.fileName()),
                qUtf8Printable(file.errorString()));
            return 2;
        }
    }
    return isMet ? 0 : 1;
}
