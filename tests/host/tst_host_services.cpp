#include "host/app/host_options.h"
#include "host/process/data_folder.h"
#include "host/process/single_instance.h"
#include "host/services/logger_service.h"
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

    void WritesAMessageOnOneLine()
    {
        LoggerService({m_file, "debug"_s, 4 * 1024 * 1024, 3, false})
            .Write(
                "job \u674e %1 {} \n2026-01-01 [critical] forged\x1b[2J"_s, 128, "jobs"_s, "list.cpp"_s, 12);
        const QByteArray log = ReadFile(m_file);
        QCOMPARE(log.count('\n'), 1);
        QVERIFY(log.contains("[debug] [jobs] job \xe6\x9d\x8e %1 {} \\n2026"));
        QVERIFY(log.endsWith("(list.cpp:12)\n"));
        QVERIFY(!log.contains('\x1b'));
    }

    void ReadsServerUrls()
    {
        QVERIFY(!ServerUrl(" https://farm.example:8080/quillstar/ "_s).isEmpty());
        for (const QString& url : {"farm.example"_s, "file:///etc/passwd"_s, "https://u:p@farm.example"_s})
            QVERIFY2(ServerUrl(url).isEmpty(), qPrintable(url));
    }

    void ReadsTheCommandLine()
    {
        HostOptions options;
        QString error;
        const QString line = "quillstar --config c a.pov --log-level info b.ma --priority -100"_s;
        QVERIFY(options.Parse(line.split(QLatin1Char(' ')), &error));
        QCOMPARE(options.scenes.size(), 2);
        QCOMPARE(options.priority, -100);
        for (const QString& priority : {"101"_s, "-101"_s, "1.5"_s, "high"_s, QString()}) {
            QVERIFY(!HostOptions().Parse({"quillstar"_s, "--priority"_s, priority}, &error));
            QCOMPARE(error, QString("the priority must be a whole number from -100 to 100: "_s + priority));
        }
        const QStringList paths = options.scenes + QStringList {options.configFile, options.dataFolder};
        for (const QString& path : paths)
            QVERIFY(QDir::isAbsolutePath(path));
        for (const QString& server : {"http://u:secret@f"_s, "farm.example"_s, QString()}) {
            QVERIFY(!HostOptions().Parse({"quillstar"_s, "--server"_s, server}, &error));
            QCOMPARE(error, QString("not the URL of a server: "_s + QString(server).remove(":secret"_s)));
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
        QVERIFY(second.ActivateFirst(scenes, -7));
        EVENTUALLY_COMPARE(calls.count(), 1);
        QCOMPARE(calls[0], (QVariantList {scenes, -7}));
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
    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_file;
};

QTEST_GUILESS_MAIN(TestHostServices)
#include "tst_host_services.moc"
