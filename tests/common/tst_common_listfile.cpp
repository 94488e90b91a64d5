#include "common/vtr_listfile.h"
#include "tests/support/disk_calls.h"
#include "tests/support/real_disks.h"
#include "tests/support/test_files.h"
#include "tests/support/test_tables.h"

#include <QLockFile>
#include <QSettings>
#include <QTemporaryDir>

namespace {

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
        for (const QString& name : {"a&b&c"_s, "a//b"_s, "/"_s, "a\\b"_s, "%252Fa"_s, "100%"_s,
                 "=;[x]\"',@ "_s, "General"_s, "灯光 \n é"_s}) {
            QVERIFY(file.Set(name, value));
            QCOMPARE(Names(file).count(name), 1);
            QCOMPARE(file.Value(name), value);
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

    void KeepsEachDamageOnce()
    {
        const auto Copies
            = [this] { return QFileInfo(m_path).dir().entryList({"*.damaged*"_s}).join(" "_s); };
        const VTListFile file(m_path, "group"_s);
        for (const char* text : {"[a\n", "[a\n", "[b\n"}) {
            QVERIFY(WriteFile(m_path, text));
            QVERIFY(QFile(m_path).exists() && file.Entries().isEmpty());
            // The time of a file may be too coarse to tell two writes apart.
            QFile written(m_path);
            QVERIFY(written.open(QIODevice::ReadWrite));
            QVERIFY(written.setFileTime(
                QDateTime::currentDateTime().addDays(-1), QFileDevice::FileModificationTime));
            written.close();
            QVERIFY(file.Entries().isEmpty());
        }
        QCOMPARE(Copies(), "lists.ini.damaged lists.ini.damaged.2"_s);
        // A file that can be read is not kept.
        QVERIFY(WriteFile(m_path, "[group]\nname=1\n"));
        QCOMPARE(Names(file), QStringList("name"_s));
        QCOMPARE(Copies(), "lists.ini.damaged lists.ini.damaged.2"_s);
    }

    void RemovesWhatAKilledWriteLeft()
    {
        const QDateTime begin = QDateTime::currentDateTime().addDays(-1);
        const auto Leave = [&](const char* suffix, int seconds) {
            QFile file(QString(m_path + QLatin1String(suffix)));
            return file.open(QIODevice::WriteOnly)
                && file.setFileTime(begin.addSecs(seconds), QFileDevice::FileModificationTime);
        };
        QVERIFY(VTListFile(m_path, "group"_s).Set("name"_s, "1"_s));
        QVERIFY(!QFile::exists(QString(m_path + ".writing"_s)));
        for (const bool isLocked : {true, false}) {
            // The files of another write, and one that QSettings does not name so, stay.
            QVERIFY(Leave(".writing", 0) && Leave(".Aa1111", 0) && Leave(".Aa2222", 60)
                && Leave(".Aa3333", -1) && Leave(".Aa4444", 61) && Leave(".old", 1));
            QLockFile lock(QString(m_path + ".lock"_s));
            QVERIFY(!isLocked || lock.tryLock(0));
            const VTListFile file(m_path, "group"_s);
            const QString left = QFileInfo(m_path).dir().entryList({"lists.ini.*"_s}).join(" "_s);
            QCOMPARE(left,
                isLocked
                    ? "lists.ini.Aa1111 lists.ini.Aa2222 lists.ini.Aa3333 lists.ini.Aa4444 lists.ini.lock "
                      "lists.ini.old lists.ini.writing"_s
                    : "lists.ini.Aa3333 lists.ini.Aa4444 lists.ini.old"_s);
        }
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
        QVERIFY(IsPrivate());
        QVERIFY(QFile::remove(m_path));
        QVERIFY(file.Set("last"_s, QString()));
        QVERIFY(IsPrivate());
    }

    void KeepsWhatItHadOnAFullDisk()
    {
        QVERIFY(QDir().mkpath(QFileInfo(m_path).path()));
        const SmallDisk disk(QFileInfo(m_path).path());
        if (!disk.IsThere())
            QSKIP("this program may not mount disks");
        CheckFailedWrite(
            QByteArray(100000, 'v'), [] { return true; }, [&] { return disk.Grow(); });
    }

    void KeepsWhatItHadInAForbiddenFolder()
    {
        std::unique_ptr<ForbiddenFolder> folder;
        const auto forbid = [&] {
            folder = std::make_unique<ForbiddenFolder>(
                QFileInfo(m_path).path(), QStringList {m_path, m_folder->path()});
            return folder->IsReady();
        };
        CheckFailedWrite("new", forbid, [&] { return folder->Allow(); });
    }

    // Unlike a kill, a power cut loses bytes and names that are not on the disk yet.
    void IsOnTheDiskBeforeItIsAcknowledged()
    {
        const VTListFile file(m_path, "group"_s);
        diskCalls.clear();
        QVERIFY(file.Set("name"_s, "value"_s));
        // Renamed as a whole, so that a kill leaves the old entries or the new.
        QCOMPARE(diskCalls.mid(diskCalls.size() - 4),
            QStringList({"rename lists.ini"_s, "sync lists.ini"_s, "sync sub"_s,
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

private:
    /// A write fails between two that succeed.
    void CheckFailedWrite(
        const QByteArray& text, const std::function<bool()>& begin, const std::function<bool()>& end)
    {
        const VTListFile file(m_path, "group"_s);
        QVERIFY(file.Set("first"_s, "old"_s));
        QVERIFY(IsPrivate());
        const QByteArray before = ReadFile(m_path);
        QVERIFY(begin());
        QVERIFY(!file.Set("second"_s, QString::fromLatin1(text)));
        QVERIFY(ReadFile(m_path) == before);
        QVERIFY(end());
        QVERIFY(file.Set("third"_s, QString()));
        for (const char* name : {"first=old", "second=", "third="})
            QVERIFY2(ReadFile(m_path).contains(name), name);
    }

    bool IsPrivate() const
    {
        constexpr QFile::Permissions Others
            = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
        return !(QFile::permissions(m_path) & Others);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_path;
};

QTEST_GUILESS_MAIN(TestListFile)
#include "tst_common_listfile.moc"
