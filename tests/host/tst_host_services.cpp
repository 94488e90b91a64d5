#include "host/app/host_options.h"
#include "host/process/data_folder.h"
#include "host/process/single_instance.h"
#include "host/services/logger_service.h"
#include "host/services/qt_message_route.h"
#include "host/services/settings_service.h"
#include "tests/support/test_files.h"
#include "tests/support/waiting.h"

/// Settings, log, command line and the single instance.
class TestHostServices : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_file = m_folder->filePath("new/folder/file"_s);
    }

    void KeepsSettingsAndAnnouncesChangesOnce()
    {
        const QVariantMap values {
            {"vtr.account.a/b c/autodownload"_s, true}, {"vtr.auth/lastname"_s, "\u674e, \"<b>\""_s}};
        SettingsService settings(m_file);
        QSignalSpy updates(&settings, &VTSettingsInterface::SettingsUpdated);
        QCOMPARE(settings.Value(values.firstKey(), 7).toInt(), 7);
        for (int round = 0; round < 2; ++round) {
            for (auto entry = values.begin(); entry != values.end(); ++entry)
                settings.SetValue(entry.key(), *entry);
            QCoreApplication::processEvents();
            EVENTUALLY_COMPARE(updates.count(), 1);
        }
        const QString copy = m_file + ".copy"_s; // Qt has no cache of this one
        QVERIFY(QFile::copy(m_file, copy));
        SettingsService saved(copy);
        for (auto entry = values.begin(); entry != values.end(); ++entry) {
            QCOMPARE(settings.Value(entry.key(), {}), *entry);
            QCOMPARE(saved.Value(entry.key(), {}).toString(), entry->toString());
        }
    }

    void FiltersByLevel()
    {
        const std::tuple<const char*, int, bool> messages[] = {{"debug", 128, true}, {"debug", 129, false},
            {"info", 128, false}, {"info", 32, true}, {"critical", 16, false}, {"critical", 0, true}};
        for (const auto& [level, severity, isWritten] : messages) {
            QFile::remove(m_file);
            LoggerService(Log(level)).Write("hello"_s, severity, "default"_s, {}, -1);
            QCOMPARE(ReadFile(m_file).contains("[default] hello\n"), isWritten);
        }
    }

    void WritesAMessageOnOneLine()
    {
        LoggerService(Log("debug"))
            .Write(
                "job \u674e %1 {} \n2026-01-01 [critical] forged\x1b[2J"_s, 128, "jobs"_s, "list.cpp"_s, 12);
        const QByteArray log = ReadFile(m_file);
        QCOMPARE(log.count('\n'), 1);
        QVERIFY(log.contains("[debug] [jobs] job \xe6\x9d\x8e %1 {} \\n2026"));
        QVERIFY(log.endsWith("(list.cpp:12)\n"));
        QVERIFY(!log.contains('\x1b'));
    }

    void RoutesQtMessages()
    {
        QLoggingCategory category("quillstar.test");
        LoggerService logger(Log("debug"));
        {
            const QtMessageRoute route(&logger);
            qCWarning(category) << "inside";
        }
        QTest::ignoreMessage(QtWarningMsg, "outside");
        qWarning("outside");
        QVERIFY(ReadFile(m_file).contains("[warning] [quillstar.test] inside"));
        QVERIFY(!ReadFile(m_file).contains("outside"));
    }

    void LogsWithoutAFile()
    {
        QFile obstacle(m_folder->filePath("new"_s));
        QVERIFY(obstacle.open(QIODevice::WriteOnly));
        LoggerService(Log("debug")).Write("lost"_s, 8, "default"_s, {}, -1);
        QVERIFY(!QFileInfo::exists(m_file));
    }

    void ReadsServerUrls()
    {
        for (const char* url : {"http://farm.example:8080", " https://farm.example/quillstar/ "})
            QVERIFY2(!ServerUrl(QString::fromLatin1(url)).isEmpty(), url);
        for (const char* url : {"farm.example", "file:///etc/passwd", "http://", "https://u:p@farm.example",
                 "https://farm.example/?a=b", ""})
            QVERIFY2(ServerUrl(QString::fromLatin1(url)).isEmpty(), url);
    }

    void ReadsTheCommandLine()
    {
        const QVector<QPair<const char*, const char*>> lines {{"", ""},
            {"--server https://f.example --config c --data d --user u --password-file p --no-auto-sign-in",
                ""},
            {"--server farm", "not the URL of a server: farm"},
            {"--server http://u:secret@f", "not the URL of a server: http://u@f"},
            {"--user u", "--user and --password-file belong together"},
            {"--log-level loud", "unknown log level: loud"}, {"a.pov --log-level info b.ma", ""}};
        for (const auto& [arguments, expected] : lines) {
            HostOptions options;
            QString error;
            const QString line = QLatin1String("quillstar ") + QLatin1String(arguments);
            const bool read = options.Parse(line.split(QLatin1Char(' '), Qt::SkipEmptyParts), &error);
            QCOMPARE(error, QLatin1String(expected));
            QCOMPARE(read, error.isEmpty());
            QCOMPARE(options.autoSignIn, !line.contains(QLatin1String("--no-auto-sign-in")));
            QCOMPARE(options.scenes.size(), line.contains(QLatin1String("a.pov")) ? 2 : 0);
            for (const QString& path : options.scenes + QStringList {options.configFile, options.dataFolder})
                QVERIFY(QDir::isAbsolutePath(path));
        }
    }

    void PassesScenesToTheFirstClient()
    {
        const SingleInstance first(m_file);
        QVERIFY(first.IsFirst());
        QSignalSpy calls(&first, &SingleInstance::Activated);
        const SingleInstance second(m_file);
        QVERIFY(!second.IsFirst());
        const QStringList scenes {"/a/ä \".pov"_s, "/b.ma"_s};
        QVERIFY(second.ActivateFirst(scenes));
        EVENTUALLY_COMPARE(calls.count(), 1);
        QCOMPARE(calls[0][0].toStringList(), scenes);
        QVERIFY(SingleInstance(m_file + ".other"_s).IsFirst());
    }

    void ReservesTheDataForOneClientOfOneUser()
    {
        const QString folder = m_folder->filePath("data"_s);
        const QString lock = folder + "/transfer/client.lock"_s;
        QString error;
        {
            DataFolder first(folder);
            QVERIFY(first.Lock(false, &error));
            QVERIFY(!DataFolder(folder).Lock(true, &error)); // the first one is running
            QVERIFY2(error.contains(": process %1 on "_s.arg(QCoreApplication::applicationPid())),
                qPrintable(error));
        }
        QVERIFY(WriteFile(lock, "4711\nquillstar\nelsewhere\n"));
        DataFolder next(folder);
        QVERIFY(!next.Lock(false, &error));
        QVERIFY2(error.contains("process 4711 on elsewhere; "_s), qPrintable(error));
        QVERIFY(next.Lock(true, &error));
        constexpr QFile::Permissions Others
            = QFile::ReadGroup | QFile::ReadOther | QFile::ExeGroup | QFile::ExeOther;
        for (const char* path : {"", "/logs", "/transfer", "/transfer/downloads.sqlite"})
            QVERIFY2(!(QFile::permissions(folder + QLatin1String(path)) & Others), path);
    }

private:
    LogOptions Log(const char* level) const
    {
        return {m_file, QString::fromLatin1(level), 4 * 1024 * 1024, 3, false};
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_file;
};

QTEST_GUILESS_MAIN(TestHostServices)
#include "tst_host_services.moc"
