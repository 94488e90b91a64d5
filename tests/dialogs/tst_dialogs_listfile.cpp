#include "dialogs/vtr_listfile.h"
#include "tests/support/disk_calls.h"
#include "tests/support/test_files.h"
#include "tests/support/test_tables.h"

#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>

#include <cstdio>

namespace {

/// Writes numbered entries until it is killed, and prints each number once its entry is saved.
int WriteUntilKilled(const QString& path)
{
    const VTListFile file(path, "group"_s);
    for (int i = 0; file.Set(QString::number(i), QStringList(QString(200, QLatin1Char('x')))); ++i) {
        std::printf("%d\n", i);
        std::fflush(stdout);
    }
    return 1;
}

QStringList Names(const VTListFile& file)
{
    QStringList names;
    const QVector<VTNamedList> entries = file.Entries();
    for (const VTNamedList& entry : entries)
        names << entry.strName;
    return names;
}

} // namespace

class TestListFile : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_path = m_folder->filePath("sub/lists.ini"_s);
    }

    void KeepsAnyNameAsOneEntry()
    {
        const VTListFile file(m_path, "group"_s);
        QVERIFY(file.Set("other"_s, QStringList()));
        const QStringList value {"v&1"_s, "v,2"_s, QString()};
        for (const QString& name : {"plain"_s, "a&b&c"_s, "a/b"_s, "/a"_s, "a/"_s, "a//b"_s, "/"_s, "a\\b"_s,
                 "%2Fa"_s, "%252Fa"_s, "100%"_s, "=;[x]\"',@ "_s, "General"_s, "灯光 \n é"_s, "<b>"_s}) {
            QVERIFY(!file.Contains(name));
            QVERIFY(file.Set(name, value));
            QCOMPARE(Names(file).count(name), 1);
            QCOMPARE(Names(file).size(), 2);
            QCOMPARE(file.Value(name), value);
            QVERIFY(file.Set(name, QString()));
            QCOMPARE(file.Value(name), QStringList(QString()));
            QVERIFY(file.Remove(name));
            QCOMPARE(Names(file), QStringList("other"_s));
        }
    }

    void ReadsFilesOfOtherPrograms()
    {
        QSettings settings(m_path, QSettings::IniFormat);
        settings.setValue("group/a/b"_s, QStringList {"1"_s, "2"_s});
        settings.setValue("group/a"_s, "3"_s);
        settings.setValue("group/50%25"_s, "4"_s);
        settings.setValue("elsewhere/a"_s, "5"_s);
        settings.sync();
        const VTListFile file(m_path, "group"_s);
        QCOMPARE(Names(file), QStringList({"50%25"_s, "a"_s, "a/b"_s}));
        QCOMPARE(file.Value("a/b"_s), QStringList({"1"_s, "2"_s}));

        // "a" is not the folder of "a/b".
        QVERIFY(file.Remove("a"_s));
        QCOMPARE(Names(file), QStringList({"50%25"_s, "a/b"_s}));
        QCOMPARE(settings.value("elsewhere/a"_s).toString(), "5"_s);
    }

    void ReadsAndKeepsADamagedFile()
    {
        QVERIFY(VTListFile(m_path, "group"_s).IsOpen());
        const QByteArray text("[group]\nfirst=1\nno value here\n=nameless\nfirst=2\n[unclosed\n\\x\xff=3\n");
        QVERIFY(WriteFile(m_path, text));
        const VTListFile file(m_path, "group"_s);
        QCOMPARE(file.Value("first"_s), QStringList("2"_s));
        QVERIFY(file.Set("second"_s, "4"_s));
        QCOMPARE(Names(file), QStringList({"first"_s, "second"_s}));
        QCOMPARE(ReadFile(QString(m_path + ".damaged"_s)), text);
    }

    void ReportsAFailedWriteAndTriesAgain()
    {
        QVERIFY(QDir().mkpath(m_path));
        const VTListFile file(m_path, "group"_s);
        QVERIFY(!file.Set("name"_s, "value"_s));
        QCOMPARE(file.Value("name"_s), QStringList("value"_s));
        QVERIFY(QDir().rmdir(m_path));
        QVERIFY(file.Set("next"_s, QString()));
        QVERIFY(ReadFile(m_path).contains("name=value"));
    }

    // Unlike a kill, a power cut loses bytes and names that are not on the disk yet.
    void IsOnTheDiskBeforeItIsAcknowledged()
    {
        const VTListFile file(m_path, "group"_s);
        diskCalls.clear();
        QVERIFY(file.Set("name"_s, "value"_s));
        QCOMPARE(diskCalls.mid(diskCalls.size() - 3),
            QStringList({"sync lists.ini"_s, "sync sub"_s,
                QString("sync "_s + QFileInfo(m_folder->path()).fileName())}));
        diskFails = true;
        QVERIFY(!file.Set("name"_s, "other"_s));
        diskFails = false;
    }

    void PassesAnOrphanedLock()
    {
        const VTListFile file(m_path, "group"_s);
        QVERIFY(WriteFile(QString(m_path + ".lock"_s), {}));
        QElapsedTimer timer;
        timer.start();
        QVERIFY(file.Set("name"_s, QString()));
        QVERIFY(timer.elapsed() < 25000); // QSettings would wait 30 s for such a lock
    }

    void LosesNothingWhenKilled()
    {
        for (int entries = 0; entries < 12; entries += 4) {
            QProcess writer;
            writer.start(QCoreApplication::applicationFilePath(), {"--write"_s, m_path});
            int acknowledged = -1;
            while (acknowledged < entries) {
                QVERIFY(writer.canReadLine() || writer.waitForReadyRead());
                acknowledged = writer.readLine().trimmed().toInt();
            }
            writer.kill();
            QVERIFY(writer.waitForFinished());
            while (writer.canReadLine())
                acknowledged = writer.readLine().trimmed().toInt();

            const QSettings settings(m_path, QSettings::IniFormat);
            QCOMPARE(settings.status(), QSettings::NoError);
            const int written = settings.allKeys().size();
            QVERIFY2(written > acknowledged, qPrintable("%1 of %2"_s.arg(written).arg(acknowledged)));
            for (int i = 0; i < written; ++i)
                QCOMPARE(settings.value("group/%1"_s.arg(i)).toString().size(), 200);
            QVERIFY(QFile::remove(m_path));
        }
    }

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_path;
};

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == "--write"_s)
        return WriteUntilKilled(arguments.value(2));
    TestListFile test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_dialogs_listfile.moc"
