// Programs that read scenes for the client, one at a time.
#include "host/rendercore/submit/scene_reporter.h"
#include "host/rendercore/task_message.h"
#include "tests/support/test_files.h"
#include "tests/support/waiting.h"

namespace {

/// The end of the program, and the report that follows; null for none.
const std::tuple<const char*, const char*, const char*> Programs[] = {
    {"writes a report", "printf text > \"$report\"", "text"},
    {"fails after its report", "printf text > \"$report\"; exit 1", "text"},
    {"writes none", "", nullptr},
    {"crashes", "kill -9 $$", nullptr},
    {"writes without end", "head -c 9000000 /dev/zero > \"$report\"", nullptr},
};

} // namespace

class SceneReporterTest : public QObject
{
    Q_OBJECT

private:
    QString Path(const char* name) const { return m_folder->filePath(QLatin1String(name)); }

    /// Puts a program in the place of Blender. It notes its process, and that of a child.
    void Install(const QByteArray& end) const
    {
        WriteFile(Path("blender"),
            "#!/bin/sh\nPATH=/bin:/usr/bin\nfor report; do :; done\necho $$ >> " + Path("processes").toUtf8()
                + '\n' + end + '\n');
        QFile::setPermissions(Path("blender"), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    QByteArrayList Processes() const
    {
        const QByteArray noted = ReadFile(Path("processes")).simplified();
        return noted.isEmpty() ? QByteArrayList() : noted.split(' ');
    }

    /// Nobody may have waited yet for a process that has ended.
    static bool HasEnded(const QByteArray& process)
    {
        const QByteArray state = ReadFile("/proc/%1/stat"_s.arg(QString::fromLatin1(process)));
        return state.isEmpty() || state.contains(") Z ");
    }

    bool AwaitEnd() const
    {
        const QByteArrayList noted = Processes();
        return QTest::qWaitFor(
            [&noted] { return std::all_of(noted.cbegin(), noted.cend(), HasEnded); }, Patience);
    }

    /// Asks until there is an answer; "none" for a failure.
    /// @param withEvents whether this thread runs its event loop meanwhile.
    static QByteArray Answer(SceneReporter& reporter, qint64 task, bool withEvents = true)
    {
        std::optional<QByteArray> answer;
        const auto ask = [&] {
            try {
                answer = reporter.Ask(task, "/a.blend"_s);
            } catch (const TaskFailure& failure) {
                answer
                    = failure.Message().Text().startsWith("Blender could not"_s) ? "none" : "another failure";
            }
            return answer.has_value();
        };
        const QDeadlineTimer end(Patience);
        while (!withEvents && !ask() && !end.hasExpired())
            QThread::yieldCurrentThread();
        return answer || QTest::qWaitFor(ask, Patience) ? *answer : "no answer";
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    const QByteArray m_path = qgetenv("PATH");

private slots:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        qputenv("PATH", m_folder->path().toUtf8());
    }
    void cleanup() { qputenv("PATH", m_path); }

    void TakesTheReportOfTheProgram_data() { AddRows(Programs); }

    void TakesTheReportOfTheProgram()
    {
        const auto& [name, end, report] = Row(Programs);
        Install(end);
        SceneReporter reporter;
        QVERIFY(!reporter.Ask(1, "/a.blend"_s));
        QCOMPARE(Answer(reporter, 1), QByteArray(report ? report : "none"));
        QCOMPARE(Processes().size(), 1);
        QCOMPARE(Answer(reporter, 1, false), QByteArray(report ? report : "none")); // read anew
        QCOMPARE(Processes().size(), 2);
    }

    void EndsAProgramThatTakesTooLong()
    {
        Install("sh -c 'echo $$ >> " + Path("processes").toUtf8() + "; sleep 600' &\nwait");
        {
            SceneReporter reporter;
            QVERIFY(!reporter.Ask(1, "/a.blend"_s));
            EVENTUALLY_COMPARE(Processes().size(), 2);
            QVERIFY(!reporter.Ask(1, "/a.blend"_s));
            reporter.Forget(2); // another one
            QVERIFY(!HasEnded(Processes().constFirst()));
        }
        QVERIFY(AwaitEnd());
        SceneReporter reporter(std::chrono::milliseconds(1));
        QCOMPARE(Answer(reporter, 1), QByteArray("none"));
        QVERIFY(AwaitEnd());
        for (const auto forget :
            {+[](SceneReporter& each) { each.Forget(3); }, +[](SceneReporter& each) { each.ForgetAll(); }}) {
            SceneReporter other;
            const int before = Processes().size();
            QVERIFY(!other.Ask(3, "/a.blend"_s));
            EVENTUALLY_COMPARE(Processes().size(), before + 2);
            forget(other);
            QVERIFY(AwaitEnd());
        }
    }

    void ReadsOneSceneAtATime()
    {
        Install("while [ ! -e " + Path("go").toUtf8() + " ]; do sleep 0.01; done; printf text > \"$report\"");
        SceneReporter reporter;
        QVERIFY(!reporter.Ask(1, "/a.blend"_s));
        EVENTUALLY_COMPARE(Processes().size(), 1);
        QVERIFY(!reporter.Ask(2, "/b.blend"_s));
        WriteFile(Path("go"), {});
        QCOMPARE(
            Answer(reporter, 2), QByteArray("text")); // after that of the other, which waits to be asked for
        QCOMPARE(Processes().size(), 2);
        QCOMPARE(*reporter.Ask(1, "/a.blend"_s), QByteArray("text"));
        QCOMPARE(Answer(reporter, 1), QByteArray("text"));
        QVERIFY(!reporter.Ask(1, "/a.blend"_s));
        QVERIFY(AwaitEnd());
        QVERIFY(!reporter.Ask(2, "/b.blend"_s)); // the report for 1 is there now
        reporter.ForgetAll();
        QVERIFY(!reporter.Ask(1, "/a.blend"_s));
    }
};

QTEST_GUILESS_MAIN(SceneReporterTest)
#include "tst_scene_reporter.moc"
