#include "vtr_listfile.h"

#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

#include <cstdio>

namespace {

const QString Group = QStringLiteral("group");

/// Writes numbered entries for ever, and prints each number once it is on the disk.
int WriteUntilKilled(const QString& path)
{
    const VTListFile file(path, Group);
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
        m_path = m_folder->filePath(QStringLiteral("sub/lists.ini"));
    }

    void AnyNameStaysOneEntry_data()
    {
        QTest::addColumn<QString>("name");

        const QStringList names {QStringLiteral("plain"), QStringLiteral("a&b&c"), QStringLiteral("a/b"),
            QStringLiteral("/a"), QStringLiteral("a/"), QStringLiteral("a//b"), QStringLiteral("/"),
            QStringLiteral("a\\b"), QStringLiteral("%2Fa"), QStringLiteral("%252Fa"), QStringLiteral("100%"),
            QStringLiteral("=;[x]\"',@ "), QStringLiteral("General"), QString::fromUtf8("灯光 \n é"),
            QStringLiteral("<b>")};
        for (const QString& name : names)
            QTest::newRow(qUtf8Printable(name)) << name;
    }

    void AnyNameStaysOneEntry()
    {
        QFETCH(QString, name);
        const QStringList value {QStringLiteral("v&1"), QStringLiteral("v,2"), QString()};
        const VTListFile file(m_path, Group);
        QVERIFY(file.Set(QStringLiteral("other"), QStringList()));
        QVERIFY(!file.Contains(name));
        QVERIFY(file.Set(name, value));

        QCOMPARE(Names(file).count(name), 1);
        QCOMPARE(Names(file).size(), 2);
        QCOMPARE(file.Value(name), value);

        QVERIFY(file.Set(name, QString()));
        QCOMPARE(file.Value(name), QStringList(QString()));
        QVERIFY(file.Remove(name));
        QCOMPARE(Names(file), QStringList(QStringLiteral("other")));
    }

    void FilesOfOtherProgramsAreRead()
    {
        {
            QSettings settings(m_path, QSettings::IniFormat);
            settings.setValue(
                QStringLiteral("group/a/b"), QStringList {QStringLiteral("1"), QStringLiteral("2")});
            settings.setValue(QStringLiteral("group/a"), QStringLiteral("3"));
            settings.setValue(QStringLiteral("group/50%25"), QStringLiteral("4"));
            settings.setValue(QStringLiteral("elsewhere/a"), QStringLiteral("5"));
        }
        const VTListFile file(m_path, Group);
        QCOMPARE(
            Names(file), QStringList({QStringLiteral("50%25"), QStringLiteral("a"), QStringLiteral("a/b")}));
        QCOMPARE(file.Value(QStringLiteral("a/b")), QStringList({QStringLiteral("1"), QStringLiteral("2")}));

        // "a" is not the folder of "a/b".
        QVERIFY(file.Remove(QStringLiteral("a")));
        QCOMPARE(Names(file), QStringList({QStringLiteral("50%25"), QStringLiteral("a/b")}));
        QSettings settings(m_path, QSettings::IniFormat);
        QCOMPARE(settings.value(QStringLiteral("elsewhere/a")).toString(), QStringLiteral("5"));
    }

    void DamagedFileIsReadAndKept()
    {
        QVERIFY(VTListFile(m_path, Group).IsOpen());
        const QByteArray text("[group]\nfirst=1\nno value here\n=nameless\nfirst=2\n[unclosed\n\\x\xff=3\n");
        QFile raw(m_path);
        QVERIFY(raw.open(QIODevice::WriteOnly));
        raw.write(text);
        raw.close();

        const VTListFile file(m_path, Group);
        QCOMPARE(file.Value(QStringLiteral("first")), QStringList(QStringLiteral("2")));
        QVERIFY(file.Set(QStringLiteral("second"), QStringLiteral("4")));
        QCOMPARE(Names(file), QStringList({QStringLiteral("first"), QStringLiteral("second")}));
        QFile copy(m_path + QLatin1String(".damaged"));
        QVERIFY(copy.open(QIODevice::ReadOnly));
        QCOMPARE(copy.readAll(), text);
    }

    void FailedWriteIsToldAndTriedAgain()
    {
        QVERIFY(QDir().mkpath(m_path));
        const VTListFile file(m_path, Group);
        const QString name = QStringLiteral("name");
        QVERIFY(!file.Set(name, QStringLiteral("value")));
        QCOMPARE(file.Value(name), QStringList(QStringLiteral("value")));

        QVERIFY(QDir().rmdir(m_path));
        QVERIFY(file.Set(QStringLiteral("next"), QString()));
        QFile raw(m_path);
        QVERIFY(raw.open(QIODevice::ReadOnly));
        QVERIFY(raw.readAll().contains("name=value"));
    }

    void WithoutPathNothingHappens()
    {
        const VTListFile file;
        QVERIFY(!file.Set(QStringLiteral("name"), QString()));
        QVERIFY(!file.Remove(QStringLiteral("name")));
        QVERIFY(file.Entries().isEmpty());
        QVERIFY(file.Value(QStringLiteral("name")).isEmpty());
    }

    void OrphanedLockHoldsNobodyUp()
    {
        const VTListFile file(m_path, Group);
        QVERIFY(QFile(m_path + QLatin1String(".lock")).open(QIODevice::WriteOnly));
        QElapsedTimer timer;
        timer.start();
        QVERIFY(file.Set(QStringLiteral("name"), QString()));
        QVERIFY(timer.elapsed() < 10000);
    }

    void KillLosesNothingThatWasAcknowledged()
    {
        for (int round = 0; round < 6; ++round) {
            QProcess writer;
            writer.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--write"), m_path});
            int acknowledged = -1;
            // A different number of writes each time, so that the kill meets the writer in different places.
            while (acknowledged < round * 3) {
                QVERIFY(writer.canReadLine() || writer.waitForReadyRead());
                while (writer.canReadLine())
                    acknowledged = writer.readLine().trimmed().toInt();
            }
            writer.kill();
            QVERIFY(writer.waitForFinished());
            while (writer.canReadLine())
                acknowledged = writer.readLine().trimmed().toInt();

            const QSettings settings(m_path, QSettings::IniFormat);
            QCOMPARE(settings.status(), QSettings::NoError);
            const int written = settings.allKeys().size();
            QVERIFY2(written >= acknowledged + 1,
                qPrintable(QStringLiteral("%1 of %2").arg(written).arg(acknowledged)));
            for (int i = 0; i < written; ++i)
                QCOMPARE(settings.value(QStringLiteral("group/%1").arg(i)).toString().size(), 200);
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
    if (arguments.value(1) == QLatin1String("--write"))
        return WriteUntilKilled(arguments.value(2));
    TestListFile test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_dialogs_listfile.moc"
