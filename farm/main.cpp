#include "farm/base/version.h"
#include "farm/farm.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QSocketNotifier>
#include <QThread>

#include <spdlog/sinks/stdout_color_sinks.h>
#include <spdlog/spdlog.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace {

constexpr double DearestCoreSecond = 1000;
constexpr std::chrono::seconds LongestEnd {3};
constexpr std::int64_t Gibibyte = std::int64_t {1} << 30;
constexpr int MostGibibytes = 1'000'000;

struct Options
{
    farm::FarmSettings settings;
    bool stopWithStdin = false;
    /// The account to pay into instead of serving; empty to serve.
    QString creditAccount;
    farm::Micros creditAmount = 0;
};

// The write end of the pipe that carries a signal from its handler into the event loop.
int signalPipe = -1;

void HandleSignal(int)
{
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = ::write(signalPipe, &byte, 1);
}

std::unique_ptr<QSocketNotifier> QuitOnSignals()
{
    int ends[2] = {};
    if (::pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0)
        throw std::runtime_error("cannot create a pipe");
    signalPipe = ends[1];
    auto notifier = std::make_unique<QSocketNotifier>(ends[0], QSocketNotifier::Read);
    QObject::connect(notifier.get(), &QSocketNotifier::activated, qApp, &QCoreApplication::quit);
    std::signal(SIGTERM, HandleSignal);
    std::signal(SIGINT, HandleSignal);
    std::signal(SIGPIPE, SIG_IGN);
    return notifier;
}

std::unique_ptr<QSocketNotifier> QuitAtEndOfStdin()
{
    auto notifier = std::make_unique<QSocketNotifier>(STDIN_FILENO, QSocketNotifier::Read);
    QSocketNotifier* const watched = notifier.get();
    QObject::connect(watched, &QSocketNotifier::activated, qApp, [watched] {
        char ignored[256];
        if (::read(STDIN_FILENO, ignored, sizeof(ignored)) > 0)
            return;
        watched->setEnabled(false);
        QCoreApplication::quit();
    });
    return notifier;
}

[[noreturn]] void RefuseOption(const QString& name)
{
    std::fprintf(stderr, "quillstar-farmd: --%s has an invalid value\n", qPrintable(name));
    std::exit(2);
}

int IntegerOption(const QCommandLineParser& parser, const QString& name, int least, int most)
{
    bool ok = false;
    const int value = parser.value(name).toInt(&ok);
    if (!ok || value < least || value > most)
        RefuseOption(name);
    return value;
}

farm::Micros AmountOf(const QString& text, const QString& name, double least, double most)
{
    bool ok = false;
    const double amount = text.toDouble(&ok);
    if (!ok || !(amount >= least && amount <= most))
        RefuseOption(name);
    return qRound64(amount * 1e6);
}

void ReadCredit(const QCommandLineParser& parser, Options& options)
{
    constexpr double SmallestCoin = 0.01;
    constexpr double MostAtOnce = 1e6;
    const QString name = QStringLiteral("credit");
    options.creditAccount = parser.value(name);
    if (options.creditAccount.isEmpty())
        RefuseOption(name);
    options.creditAmount = AmountOf(parser.positionalArguments().value(0), name, SmallestCoin, MostAtOnce);
}

void SetLogLevel(const QString& level)
{
    const spdlog::level::level_enum known = spdlog::level::from_str(level.toStdString());
    if (known == spdlog::level::off && level != QLatin1String("off"))
        RefuseOption(QStringLiteral("log-level"));
    spdlog::set_level(known);
}

void AddOptions(QCommandLineParser& parser)
{
    const QString beside = QCoreApplication::applicationDirPath() + QStringLiteral("/farm/");
    // One core stays free for the person at the machine.
    const QString freeCores = QString::number(std::max(1, QThread::idealThreadCount() - 1));
    const QString price = QString::number(double(farm::DefaultPrice) / 1e6);
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOptions({
        {QStringLiteral("data"), QStringLiteral("Folder for the farm's data."), QStringLiteral("folder")},
        {QStringLiteral("bind"), QStringLiteral("Address to listen on."), QStringLiteral("address"),
            QStringLiteral("127.0.0.1")},
        {QStringLiteral("port"), QStringLiteral("Port to listen on, 0 for a free one."),
            QStringLiteral("port"), QStringLiteral("0")},
        {QStringLiteral("slots"), QStringLiteral("Frames rendered at a time."), QStringLiteral("number"),
            freeCores},
        {QStringLiteral("quota"), QStringLiteral("Space for the files of each account."),
            QStringLiteral("GiB"), QStringLiteral("20")},
        {QStringLiteral("price"), QStringLiteral("Price of a core-second."), QStringLiteral("amount"), price},
        {QStringLiteral("job-types"), QStringLiteral("File that says how job types are rendered."),
            QStringLiteral("file"), beside + QStringLiteral("job_types.json")},
        {QStringLiteral("scenes"), QStringLiteral("Folder of the scenes that jobs may name."),
            QStringLiteral("folder"), beside + QStringLiteral("scenes")},
        {QStringLiteral("no-demo"), QStringLiteral("Create no demo accounts and jobs.")},
        {QStringLiteral("credit"),
            QStringLiteral("Pay an amount, given after the name, into this account, then exit."),
            QStringLiteral("name> <amount")},
        {QStringLiteral("take-over"),
            QStringLiteral("Ignore the lock of another machine that has left it on a shared disk.")},
        {QStringLiteral("stop-with-stdin"), QStringLiteral("Exit at the end of standard input.")},
        {QStringLiteral("log-level"), QStringLiteral("trace, debug, info, warning, error, critical or off."),
            QStringLiteral("level"), QStringLiteral("info")},
    });
}

Options ReadOptions()
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("A small render farm: serves accounts and jobs over HTTP and "
                       "renders on this machine."));
    AddOptions(parser);
    parser.process(*QCoreApplication::instance());
    const bool credit = parser.isSet(QStringLiteral("credit"));
    if (parser.value(QStringLiteral("data")).isEmpty()
        || parser.positionalArguments().size() != (credit ? 1 : 0))
        parser.showHelp(2);
    SetLogLevel(parser.value(QStringLiteral("log-level")));
    Options options;
    if (credit)
        ReadCredit(parser, options);
    options.settings.dataFolder = parser.value(QStringLiteral("data"));
    options.settings.sceneFolder = parser.value(QStringLiteral("scenes"));
    options.settings.jobTypesFile = parser.value(QStringLiteral("job-types"));
    options.settings.address = parser.value(QStringLiteral("bind"));
    options.settings.port = IntegerOption(parser, QStringLiteral("port"), 0, 65535);
    options.settings.slotCount = IntegerOption(parser, QStringLiteral("slots"), 1, 1024);
    options.settings.pricePerCoreSecond
        = AmountOf(parser.value(QStringLiteral("price")), QStringLiteral("price"), 0, DearestCoreSecond);
    options.settings.quota = IntegerOption(parser, QStringLiteral("quota"), 0, MostGibibytes) * Gibibyte;
    options.settings.takeOver = parser.isSet(QStringLiteral("take-over"));
    options.settings.demo = !parser.isSet(QStringLiteral("no-demo"));
    options.stopWithStdin = parser.isSet(QStringLiteral("stop-with-stdin"));
    return options;
}

/// Works even while the farm runs, because the balance is changed in one transaction.
int PayIn(const Options& options)
{
    const QString file = farm::Farm::DatabaseFile(options.settings.dataFolder);
    if (!QFile::exists(file))
        throw std::runtime_error("there is no farm in the data folder");
    farm::Database database(file, farm::Schema());
    farm::AccountStore accounts(database, 0);
    const farm::Micros balance = accounts.Credit(options.creditAccount, options.creditAmount);
    std::printf("balance: %s %s\n", qPrintable(farm::MoneyText(balance)), qPrintable(farm::Currency()));
    return 0;
}

int Run(const Options& options)
{
    const auto signalNotifier = QuitOnSignals();
    const auto stdinNotifier = options.stopWithStdin ? QuitAtEndOfStdin() : nullptr;
    const farm::Farm farm(options.settings);
    std::printf("listening on %s\n", qPrintable(farm.Url()));
    std::fflush(stdout);
    const int result = QCoreApplication::exec();
    spdlog::info("shutting down");
    // A client that keeps its connection open must not delay the exit; everything acknowledged is on the disk.
    std::thread([] {
        std::this_thread::sleep_for(LongestEnd);
        std::_Exit(0);
    }).detach();
    return result;
}

} // namespace

int main(int argc, char** argv)
{
    spdlog::set_default_logger(spdlog::stderr_color_mt("farm"));
    // The data folder holds password hashes and other people's pictures.
    ::umask(077);
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("quillstar-farmd"));
    QCoreApplication::setApplicationVersion(farm::Version());
    try {
        const Options options = ReadOptions();
        return options.creditAccount.isEmpty() ? Run(options) : PayIn(options);
    } catch (const std::exception& error) {
        spdlog::critical("quillstar-farmd cannot run: {}", error.what());
        return 1;
    }
}
