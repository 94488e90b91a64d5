#include "host/app/host_options.h"

#include "host/farmclient/farm_numbers.h"
#include "host/services/logger_service.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>

#include <algorithm>
#include <optional>

namespace {

QString BesideProgram(const QString& name)
{
    return QDir(QCoreApplication::applicationDirPath()).filePath(name);
}

QString PluginFileName()
{
#ifdef Q_OS_WIN
    return QStringLiteral("com_vtr_qsclient.dll");
#else
    return QStringLiteral("libcom_vtr_qsclient.so");
#endif
}

QString FarmFileName()
{
#ifdef Q_OS_WIN
    return QStringLiteral("quillstar-farmd.exe");
#else
    return QStringLiteral("quillstar-farmd");
#endif
}

void AddOptions(QCommandLineParser& parser)
{
    const auto add
        = [&parser](const char* name, const char* text, const char* value, const QString& preset = {}) {
              parser.addOption(
                  {QString::fromLatin1(name), QString::fromLatin1(text), QString::fromLatin1(value), preset});
          };
    add("server", "Use the farm at <URL> instead of the embedded one.", "URL");
    add("config", "Keep the settings in <FILE>.", "FILE",
        QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation)
            + QLatin1String("/quillstar.ini"));
    add("data", "Keep logs, transfers and the embedded farm's data in <DIR>.", "DIR",
        QStandardPaths::writableLocation(QStandardPaths::AppDataLocation));
    add("downloads", "Download finished frames to <DIR> unless the account has chosen another folder.",
        "DIR");
    add("user", "Sign in as <NAME>.", "NAME");
    add("password-file", "Read the password for --user from the first line of <FILE>.", "FILE");
    add("no-auto-sign-in", "Show the sign-in window even if a user name and password are known.", "");
    add("take-over", "Use the data even if another machine has left it locked.", "");
    add("skin", "Use the skin <NAME>.", "NAME");
    add("language", "Use the language <LOCALE>, for example en.", "LOCALE");
    add("log-level", "Log messages of <LEVEL> and above: trace, debug, info, warning, error or critical.",
        "LEVEL", QStringLiteral("info"));
    add("plugin", "Load the main window from <FILE>.", "FILE", BesideProgram(PluginFileName()));
    add("farm", "Start the embedded farm from <FILE>.", "FILE", BesideProgram(FarmFileName()));
    parser.addPositionalArgument(QStringLiteral("scenes"),
        QStringLiteral("Scenes to submit: .pov, .blend, .ma or .mb."), QStringLiteral("[scene …]"));
    add("priority", "Give the jobs of the scenes the priority <N>, from -100 to 100.", "N",
        QStringLiteral("0"));
    add("screenshots", "Save a picture of every window to <DIR>, then quit.", "DIR");
}

QString AbsolutePath(const QString& path)
{
    return path.isEmpty() ? path : QDir::cleanPath(QDir::current().absoluteFilePath(path));
}

/// @return none unless the farm accepts the text as a priority.
std::optional<int> ReadPriority(const QString& text)
{
    bool isNumber = false;
    const int priority = text.toInt(&isNumber);
    const bool isInRange
        = priority >= FarmNumbers::LowestPriority && priority <= FarmNumbers::HighestPriority;
    return isNumber && isInRange ? std::optional<int>(priority) : std::nullopt;
}

} // namespace

bool HostOptions::Parse(const QStringList& arguments, QString* error)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("The QuillStar render farm client."));
    const QCommandLineOption help(
        {QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Show this help."));
    const QCommandLineOption version(
        {QStringLiteral("v"), QStringLiteral("version")}, QStringLiteral("Show the version."));
    parser.addOptions({help, version});
    AddOptions(parser);
    if (!parser.parse(arguments)) {
        *error = parser.errorText();
        return false;
    }
    if (parser.isSet(help))
        parser.showHelp();
    if (parser.isSet(version))
        parser.showVersion();

    const auto value = [&parser](const char* name) { return parser.value(QString::fromLatin1(name)); };
    const QString serverText = value("server");
    server = ServerUrl(serverText);
    configFile = AbsolutePath(value("config"));
    dataFolder = AbsolutePath(value("data"));
    user = value("user");
    passwordFile = AbsolutePath(value("password-file"));
    autoSignIn = !parser.isSet(QStringLiteral("no-auto-sign-in"));
    takeOver = parser.isSet(QStringLiteral("take-over"));
    skin = value("skin");
    language = value("language");
    logLevel = value("log-level");
    downloadFolder = AbsolutePath(value("downloads"));
    pluginFile = AbsolutePath(value("plugin"));
    farmProgram = AbsolutePath(value("farm"));
    screenshotFolder = AbsolutePath(value("screenshots"));

    const QStringList positional = parser.positionalArguments();
    for (const QString& scene : positional)
        scenes.append(AbsolutePath(scene));

    const std::optional<int> askedPriority = ReadPriority(value("priority"));
    priority = askedPriority.value_or(0);

    if (parser.isSet(QStringLiteral("server")) && server.isEmpty())
        *error = QStringLiteral("not the URL of a server: %1").arg(QUrl(serverText).toDisplayString());
    else if (!LogOptions::Levels().contains(logLevel))
        *error = QStringLiteral("unknown log level: %1").arg(logLevel);
    else if (!askedPriority)
        *error = QStringLiteral("the priority must be a whole number from -100 to 100: %1")
                     .arg(value("priority"));
    else if (user.isEmpty() != passwordFile.isEmpty())
        *error = QStringLiteral("--user and --password-file belong together");
    else
        return true;
    return false;
}

bool HostOptions::AsksForText(int argc, const char* const* argv)
{
    return std::any_of(argv + 1, argv + argc, [](const QByteArray& argument) {
        return argument == "-h" || argument == "--help" || argument == "-v" || argument == "--version";
    });
}

QUrl ServerUrl(const QString& text)
{
    const QUrl url(text.trimmed(), QUrl::StrictMode);
    const bool isWeb = url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https");
    const bool isRoot = !url.hasQuery() && !url.hasFragment() && url.userInfo().isEmpty();
    return url.isValid() && isWeb && isRoot && !url.host().isEmpty() ? url : QUrl();
}
