#include "host_options.h"
#include "logger_service.h"
#include "qt_message_route.h"
#include "settings_service.h"
#include "single_instance.h"

#include <QLoggingCategory>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

namespace {

QByteArray Content(const QString& file)
{
    QFile input(file);
    return input.open(QIODevice::ReadOnly) ? input.readAll() : QByteArray();
}

} // namespace

/// Settings, log, command line and the one-client rule.
class TestHostServices : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void KeepsSettings();
    void AnnouncesABatchOfChangesOnce();
    void FiltersByLevel_data();
    void FiltersByLevel();
    void WritesOneLineAMessage();
    void RotatesTheFile();
    void RoutesQtMessages();
    void LogsWithoutAFile();
    void ReadsServerUrls_data();
    void ReadsServerUrls();
    void ReadsTheCommandLine_data();
    void ReadsTheCommandLine();
    void CallsTheFirstClient();

private:
    LogOptions Log(const QString& level) const { return {m_file, level, 4 * 1024 * 1024, 3, false}; }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_file;
};

void TestHostServices::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_file = m_folder->filePath(QStringLiteral("new/folder/file"));
}

void TestHostServices::KeepsSettings()
{
    const QString key = QStringLiteral("vtr.account.a/b c/autodownload");
    {
        SettingsService settings(m_file);
        QCOMPARE(settings.Value(key, 0).toInt(), 0);
        settings.SetValue(key, true);
        settings.SetValue(QStringLiteral("vtr.auth/lastname"), QStringLiteral("\u674e, \"<b>\""));
        QCOMPARE(settings.Value(key, 0).toBool(), true);
    }
    SettingsService settings(m_file);
    QCOMPARE(settings.Value(key, 0).toBool(), true);
    QCOMPARE(settings.Value(QStringLiteral("vtr.auth/lastname"), {}).toString(),
        QStringLiteral("\u674e, \"<b>\""));
}

void TestHostServices::AnnouncesABatchOfChangesOnce()
{
    SettingsService settings(m_file);
    QSignalSpy updates(&settings, &VTSettingsInterface::SettingsUpdated);
    settings.SetValue(QStringLiteral("g/a"), 1);
    settings.SetValue(QStringLiteral("g/b"), 2);
    QCOMPARE(updates.count(), 0);
    QTRY_COMPARE(updates.count(), 1);
    QVERIFY(Content(m_file).contains("a=1"));
    settings.SetValue(QStringLiteral("g/a"), 1);
    QCoreApplication::processEvents();
    QCOMPARE(updates.count(), 1);
}

void TestHostServices::FiltersByLevel_data()
{
    QTest::addColumn<QString>("level");
    QTest::addColumn<int>("written");
    QTest::addColumn<bool>("kept");
    QTest::newRow("debug at debug") << QStringLiteral("debug") << 128 << true;
    QTest::newRow("debug at info") << QStringLiteral("info") << 128 << false;
    QTest::newRow("warning at info") << QStringLiteral("info") << 32 << true;
    QTest::newRow("error at critical") << QStringLiteral("critical") << 16 << false;
    QTest::newRow("beyond debug") << QStringLiteral("debug") << 129 << false;
    QTest::newRow("no level") << QStringLiteral("critical") << 0 << true;
}

void TestHostServices::FiltersByLevel()
{
    QFETCH(QString, level);
    QFETCH(int, written);
    LoggerService(Log(level)).Write(QStringLiteral("hello"), written, QStringLiteral("default"), {}, -1);
    QTEST(Content(m_file).contains("[default] hello\n"), "kept");
}

void TestHostServices::WritesOneLineAMessage()
{
    LoggerService(Log(QStringLiteral("debug")))
        .Write(QStringLiteral("job \u674e %1 {} \n2026-01-01 [critical] forged\x1b[2J"), 128,
            QStringLiteral("jobs"), QStringLiteral("list.cpp"), 12);
    const QByteArray log = Content(m_file);
    QCOMPARE(log.count('\n'), 1);
    QVERIFY(log.contains("[debug] [jobs] job \xe6\x9d\x8e %1 {} \\n2026"));
    QVERIFY(log.endsWith("(list.cpp:12)\n"));
    QVERIFY(!log.contains('\x1b'));
}

void TestHostServices::RotatesTheFile()
{
    LogOptions options = Log(QStringLiteral("info"));
    options.maxFileBytes = 2000;
    options.oldFiles = 2;
    LoggerService logger(options);
    for (int i = 0; i < 200; ++i)
        logger.Write(
            QStringLiteral("message %1").arg(i), LoggerService::Info, QStringLiteral("default"), {}, -1);
    const QFileInfoList files = QFileInfo(m_file).dir().entryInfoList(QDir::Files);
    QCOMPARE(files.size(), 3);
    for (const QFileInfo& file : files)
        QVERIFY(file.size() <= 2000);
    QVERIFY(Content(m_file).contains("message 199\n"));
}

void TestHostServices::RoutesQtMessages()
{
    QLoggingCategory category("quillstar.test");
    LoggerService logger(Log(QStringLiteral("debug")));
    {
        const QtMessageRoute route(&logger);
        qCWarning(category) << "inside";
    }
    QTest::ignoreMessage(QtWarningMsg, "outside");
    qWarning("outside");
    const QByteArray log = Content(m_file);
    QVERIFY(log.contains("[warning] [quillstar.test] inside"));
    QVERIFY(!log.contains("outside"));
}

void TestHostServices::LogsWithoutAFile()
{
    QFile obstacle(m_folder->filePath(QStringLiteral("new")));
    QVERIFY(obstacle.open(QIODevice::WriteOnly));
    LoggerService(Log(QStringLiteral("debug")))
        .Write(QStringLiteral("lost"), 8, QStringLiteral("default"), {}, -1);
    QVERIFY(!QFileInfo::exists(m_file));
}

void TestHostServices::ReadsServerUrls_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("usable");
    QTest::newRow("plain") << QStringLiteral("http://farm.example:8080") << true;
    QTest::newRow("folder") << QStringLiteral(" https://farm.example/quillstar/ ") << true;
    QTest::newRow("no scheme") << QStringLiteral("farm.example") << false;
    QTest::newRow("file") << QStringLiteral("file:///etc/passwd") << false;
    QTest::newRow("no host") << QStringLiteral("http://") << false;
    QTest::newRow("password inside") << QStringLiteral("https://u:p@farm.example") << false;
    QTest::newRow("query") << QStringLiteral("https://farm.example/?a=b") << false;
    QTest::newRow("empty") << QString() << false;
}

void TestHostServices::ReadsServerUrls()
{
    QFETCH(QString, text);
    QTEST(!ServerUrl(text).isEmpty(), "usable");
}

void TestHostServices::ReadsTheCommandLine_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("error");
    const auto row = [](const char* name, const char* arguments, const char* error) {
        QTest::newRow(name) << QString::fromLatin1(arguments).split(QLatin1Char(' '), Qt::SkipEmptyParts)
                            << QString::fromLatin1(error);
    };
    row("nothing", "", "");
    row("all", "--server https://f.example --config c --data d --user u --password-file p --no-auto-sign-in",
        "");
    row("no server", "--server farm", "not the URL of a server: farm");
    row("user alone", "--user u", "--user and --password-file belong together");
    row("level", "--log-level loud", "unknown log level: loud");
    row("scenes", "a.pov --log-level info b.ma", "");
}

void TestHostServices::ReadsTheCommandLine()
{
    QFETCH(QStringList, arguments);
    HostOptions options;
    QString error;
    const bool read = options.Parse(QStringList(QStringLiteral("quillstar")) + arguments, &error);
    QCOMPARE(read, error.isEmpty());
    QTEST(error, "error");
    QVERIFY(QDir::isAbsolutePath(options.configFile) && QDir::isAbsolutePath(options.dataFolder));
    QVERIFY(options.screenshotFolder.isEmpty());
    QCOMPARE(
        options.scenes.size(), arguments.filter(QRegularExpression(QStringLiteral("\\.(pov|ma)$"))).size());
    for (const QString& scene : qAsConst(options.scenes))
        QVERIFY(QDir::isAbsolutePath(scene));
}

void TestHostServices::CallsTheFirstClient()
{
    const SingleInstance first(m_file);
    QVERIFY(first.IsFirst());
    QSignalSpy calls(&first, &SingleInstance::Called);
    const SingleInstance second(m_file);
    QVERIFY(!second.IsFirst());
    const QStringList scenes {QStringLiteral("/a/ä \".pov"), QStringLiteral("/b.ma")};
    QVERIFY(second.CallFirst(scenes));
    QTRY_COMPARE(calls.count(), 1);
    QCOMPARE(calls.constFirst().constFirst().toStringList(), scenes);
    QVERIFY(SingleInstance(m_file + QStringLiteral(".other")).IsFirst());
}

QTEST_GUILESS_MAIN(TestHostServices)
#include "tst_host_services.moc"
