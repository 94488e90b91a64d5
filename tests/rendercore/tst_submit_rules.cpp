// State changes of submissions, and messages of tasks.
#include "host/farmclient/http_result.h"
#include "host/rendercore/download/download_text.h"
#include "host/rendercore/submit/submit_arguments.h"
#include "host/rendercore/submit/submit_rules.h"
#include "host/rendercore/submit/submit_text.h"
#include "tests/support/capitals.h"
#include "tests/support/test_tables.h"

namespace {

using namespace SubmitRules;
using Stage = SubmitStage;
using Error = SubmitError;

QVariantList UsualArguments()
{
    return MakeArguments(1, 9, 640, 480);
}

/// A task in the middle of a stage, with one file missing.
SubmitTask In(Stage stage, Error error = Error::None, bool goesOnWithout = false)
{
    SubmitTask task;
    task.stage = task.next = stage;
    task.progress = 50;
    task.error = error;
    task.message = "why"_s;
    task.uploadText = "half"_s;
    task.goesOnWithout = goesOnWithout;
    task.arguments = UsualArguments();
    task.refused = QStringList {"old"_s};
    task.work.scene = "old"_s;
    task.work.missing = {"gone.png"_s};
    return task;
}

/// The outcome of the stage that a task is in; the next stage follows.
StageOutcome OutcomeOf(const SubmitTask& task, const QVector<TaskMessage>& missing = {"gone.png"_s},
    const QStringList& refused = {})
{
    StageOutcome outcome;
    outcome.stage = task.next;
    outcome.next = static_cast<Stage>(int(task.next) + 1);
    outcome.error = Error::UploadRefused;
    outcome.message = outcome.job = "12"_s;
    outcome.arguments = UsualArguments();
    outcome.refused = refused;
    outcome.work.scene = "new"_s;
    outcome.work.missing = missing;
    return outcome;
}

SubmitTask Done(SubmitTask task, const QVector<TaskMessage>& missing = {"gone.png"_s})
{
    ApplyDone(task, OutcomeOf(task, missing));
    return task;
}

SubmitTask Failed(SubmitTask task, const QStringList& refused = {})
{
    ApplyFailed(task, OutcomeOf(task, {}, refused));
    return task;
}

SubmitTask WithNext(SubmitTask task, Stage next, bool isDone = false)
{
    task.next = next;
    task.isDone = isDone;
    return task;
}

SubmitTask Hashed(SubmitTask task)
{
    task.work.files = {{"p"_s, "/p"_s, "sum"_s, 0, false}};
    task.work.packages = {{"sum"_s, 1, false, {}}};
    return task;
}

/// Stage shown > stage to come, error, progress and flags; then scene, message|upload and refused files where they have
/// changed.
QString Summary(const SubmitTask& task)
{
    static const char* const questions[] = {"", " retry?", " missing?"};
    QString summary
        = "%1>%2 %3 %4%"_s.arg(int(task.stage)).arg(int(task.next)).arg(int(task.error)).arg(task.progress);
    summary += QLatin1String(questions[int(QuestionOf(task))]) + QLatin1String(task.isDone ? " done" : "");
    summary += QLatin1String(MustAskFirst(task) ? " asks" : "");
    summary += QLatin1String(task.goesOnWithout ? " without" : "");
    summary += QLatin1String(task.areArgumentsChecked ? " checked" : "");
    const QString text = task.message.Text() + QLatin1Char('|') + task.uploadText.Text();
    for (const QString& part : {task.work.scene, text, task.refused.join(QLatin1Char(','))}) {
        const bool isAsBefore = part == "old"_s || part == "why|half"_s;
        summary += isAsBefore ? QString() : QString(" "_s + (part.isEmpty() ? "-"_s : part));
    }
    return summary;
}

/// A message, and its text in two languages; null where it stays the same.
const auto& MessageCases()
{
    static const FarmFault late {FarmFault::TimedOut};
    static const FarmFault refused {FarmFault::Unreachable, 1 /* QNetworkReply::ConnectionRefusedError */};
    static const std::tuple<const char*, TaskMessage, const char*, const char*> rows[] = {
        {"number", {SubmitText::Submitted, {"12"_s}}, "Submitted as job 12.", "SUBMITTED AS JOB 12."},
        {"path with a mark", {DownloadText::NotSaved, {"/%2.png"_s, "why"_s}},
            "/%2.png cannot be saved: why.", "/%2.png CANNOT BE SAVED: why."},
        {"fault in a sentence in a sentence",
            {DownloadText::NextAttempt, {TaskMessage(DownloadText::NotNow, {"a.png"_s, late}), "5"_s}},
            "The farm cannot send a.png at the moment: The server did not answer in time. The next attempt "
            "is in 5 s.",
            "THE FARM CANNOT SEND a.png AT THE MOMENT: THE SERVER DID NOT ANSWER IN TIME. THE NEXT ATTEMPT "
            "IS IN 5 S."},
        {"cause", {DownloadText::InterruptedBecause, {"a.png"_s, TaskMessage::CauseOf(refused)}},
            "The transfer of a.png was interrupted: the connection was refused.",
            "THE TRANSFER OF a.png WAS INTERRUPTED: THE CONNECTION WAS REFUSED."},
        {"lines", TaskMessage::Lines({late, TaskMessage(), "a.png"_s}),
            "The server did not answer in time.\na.png", "THE SERVER DID NOT ANSWER IN TIME.\na.png"},
        {"words", "[\"Stopped.\"]"_s, "[\"Stopped.\"]", nullptr},
        {"no mark", {"100% of %1 and %2 in %0%", {"a"_s}}, "100% of a and %2 in %0%",
            "100% OF a AND %2 IN %0%"},
        {"empty line", TaskMessage::Lines({TaskMessage(), TaskMessage::Lines({}), FarmFault()}), "", nullptr},
        {"none", {}, "", nullptr},
        {"sentence of an earlier version", TaskMessage::FromStored("Stopped."_s), "Stopped.", "STOPPED."},
        {"numbers of an earlier version", TaskMessage::FromStored("[7]"_s), "[7]", nullptr},
    };
    return rows;
}

} // namespace

class SubmitRulesTest : public QObject
{
    Q_OBJECT

private slots:
    void ChangesTheTask_data()
    {
        QTest::addColumn<QString>("summary");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char* name, const char* expected, const SubmitTask& task) {
            QTest::newRow(name) << Summary(task) << QString::fromLatin1(expected);
        };
        const auto change = [row](const char* name, const char* expected, SubmitTask task, auto rule,
                                const auto&... values) {
            rule(task, values...);
            row(name, expected, task);
        };

        row("analysed", "1>2 0 100% new |", Done(In(Stage::Analyze)));
        row("nothing is missing", "4>5 0 100% new |", Done(In(Stage::CopySame), {}));
        row("is asked about first", "3>4 0 100% asks new |", Done(In(Stage::Checksum)));
        row("goes on without them", "4>5 0 100% without new |", Done(In(Stage::CopySame, Error::None, true)));
        row("stopped, yet a stage further", "5>6 7 50% new", Done(In(Stage::Upload, Error::Stopped)));
        row("is a job in spite of a stop", "7>7 0 100% done Submitted as job 12.|",
            Done(In(Stage::Submit, Error::Stopped)));
        row("the same is missing", "1>2 0 100% without new |", Done(In(Stage::Analyze, Error::None, true)));
        row("more is missing", "1>2 0 100% new |",
            Done(In(Stage::Analyze, Error::None, true), {"gone.png"_s, "b"_s}));

        row("refused upload", "5>5 3 50% retry? new 12\na\nb| a,b",
            Failed(In(Stage::Upload), {"a"_s, "b"_s}));
        row("refused package", "6>1 3 50% retry? new 12\na| a", Failed(In(Stage::Uncompress), {"a"_s}));
        row("cannot be packed", "2>1 3 50% retry? 12|", Failed(In(Stage::Compress)));
        row("package cannot be read", "3>1 3 50% retry? 12|", Failed(In(Stage::Checksum)));
        row("refused job", "7>7 3 50% retry? 12|", Failed(In(Stage::Submit)));
        change("to be tried again", "5>6 0 50% new 12|12", In(Stage::Upload), ApplyTryAgain,
            OutcomeOf(In(Stage::Upload)));

        change("released", "0>5 0 0% |half -", In(Stage::Upload, Error::Stopped), Release);
        change("uploads again", "0>4 0 0% asks |half -", In(Stage::Upload, Error::UploadRefused), Continue);
        change("unpacks again", "0>4 0 0% asks |half -", In(Stage::Uncompress, Error::Stopped), Continue);
        change("looks again", "0>1 0 0% without |half -", In(Stage::CopySame, Error::AwaitsUser), Continue);
        change("without after all", "0>1 0 0% without |half -", In(Stage::CopySame, Error::TexturesMissing),
            Continue);
        change(
            "checked arguments", "0>7 0 0% checked |half -", In(Stage::Submit, Error::AwaitsUser), Continue);
        change("bad scene", "0>1 0 0% |half -", In(Stage::Analyze, Error::SceneUnusable), Continue);
        change("halted", "5>5 7 50% now|", In(Stage::Upload), Halt, Error::Stopped, "now"_s);
        SubmitTask full = In(Stage::Upload);
        full.progress = 100;
        change("halted at the end of a stage", "5>5 7 99% now|", full, Halt, Error::Stopped, "now"_s);
        change("goes on in its stage", "5>5 0 50%", In(Stage::Upload), EnterNextStage);
        change("enters a stage", "7>7 0 0% |", WithNext(In(Stage::Upload), Stage::Submit), EnterNextStage);

        change("restored", "5>4 7 0% asks", Hashed(In(Stage::Upload, Error::Stopped)), Restore);
        change("restored unhashed", "5>1 7 0%", In(Stage::Upload, Error::Stopped), Restore);
        change("restored if spoilt", "6>1 3 0% retry?", Hashed(In(Stage::Uncompress, Error::UploadRefused)),
            Restore);
        change("restored if refused", "5>4 3 0% retry? asks", Hashed(In(Stage::Upload, Error::UploadRefused)),
            Restore);
        change("restored before its analysis", "0>1 0 0% - | -", SubmitTask(), Restore);
        change("restored job", "0>1 0 100% done - | -", WithNext(SubmitTask(), Stage::Submit, true), Restore);
    }

    void ChangesTheTask()
    {
        QFETCH(QString, summary);
        QTEST(summary, "expected");
    }

    void SaysWhyATaskStandsStill()
    {
        QStringList texts;
        for (const SubmitTask& task : {In(Stage::Upload), In(Stage::Upload, Error::UploadRefused),
                 In(Stage::CopySame, Error::AwaitsUser), In(Stage::CopySame, Error::TexturesMissing),
                 In(Stage::Submit, Error::AwaitsUser), In(Stage::Submit, Error::FarmRefused),
                 In(Stage::Submit, Error::Stopped)})
            texts.append(HaltText(task));
        QCOMPARE(texts.join(QLatin1Char('|')),
            "||Texture missing|Texture missing|Check arguments|Submission failed|Paused"_s);
    }

    void LooksAgainUnlessEverythingIsThere()
    {
        const auto next = [](auto damage) {
            SubmitTask task = Hashed(In(Stage::Upload, Error::Stopped));
            damage(task);
            Restore(task);
            return task.next;
        };
        QCOMPARE(next([](SubmitTask&) {}), Stage::CopySame);
        QCOMPARE(next([](SubmitTask& task) { task.arguments.clear(); }), Stage::Analyze);
        QCOMPARE(next([](SubmitTask& task) { task.work.files[0].package = 1; }), Stage::Analyze);
        QCOMPARE(next([](SubmitTask& task) { task.work.packages.append(Package()); }), Stage::Analyze);
        QCOMPARE(next([](SubmitTask& task) { task.work.files[0].checksum.clear(); }), Stage::Analyze);
    }

    void TellsAFullAccountFromOtherRefusals()
    {
        const FarmFault full {507};
        const auto text = [](Error error, const TaskMessage& message) {
            SubmitTask task = In(Stage::Upload, error);
            task.message = message;
            return HaltText(task);
        };
        for (const Error error : {Error::UploadRefused, Error::GivenUp}) {
            QCOMPARE(text(error, TaskMessage::Lines({full, "/a"_s})), "No space left"_s);
            QCOMPARE(text(error, {SubmitText::FileNotPacked, {TaskMessage(full)}}), "No space left"_s);
            QCOMPARE(text(error, TaskMessage::Lines({FarmFault {422}, "/a"_s})), QString());
        }
        QCOMPARE(text(Error::FarmRefused, full), QString());
    }

    void ListsTheFilesOfATask()
    {
        SubmitWork work;
        QStringList expected;
        for (int file = 1; file <= 40; ++file) {
            work.files.append({{}, "/%1"_s.arg(file), {}, 0, false});
            expected.append("/%1"_s.arg(file));
            const QStringList lines = FileList(work).Text().split(QLatin1Char('\n'));
            if (file == 1)
                QCOMPARE(lines, expected);
            else
                QCOMPARE(lines.value(0), "%1 files belong to the scene:"_s.arg(file));
            const bool isCut = lines.constLast() == "…"_s;
            QCOMPARE(
                lines.mid(file > 1, lines.size() - (file > 1) - isCut), expected.mid(0, isCut ? 30 : file));
            QCOMPARE(isCut, file > 30);
        }
    }

    void RangesShareTheirFramesAndTheirSize()
    {
        const auto range = [](int number, int first, int last, const char* width) {
            return QVariantMap {{"startFrame_%1"_s.arg(number), first}, {"endFrame_%1"_s.arg(number), last},
                {"width"_s, QLatin1String(width)}, {"height"_s, ""_s}, {"prerender"_s, true}};
        };
        QVERIFY(AreArguments({range(0, 1, 10000, ""), range(1, 90000, 99999, "")}));
        QVERIFY(!AreArguments({range(0, 1, 10000, ""), range(1, 89999, 99999, "")}));
        QVERIFY(!AreArguments({range(0, 99999, 100000, "")}));
        QVariantList many;
        for (int number = 0; number < 15; ++number)
            many.append(range(number, 1, 1, ""));
        QVERIFY(AreArguments(many));
        many.append(range(15, 1, 1, ""));
        QVERIFY(!AreArguments(many));
        const QJsonObject job = JobMembers({range(0, 1, 2, "7"), range(1, 4, 4, "9")}, 32, 16, 2);
        QCOMPARE(QJsonDocument(job).toJson(QJsonDocument::Compact),
            QByteArray(R"({"frames":[{"end":2,"start":1,"step":2},{"end":4,"start":4,"step":2}],)"
                       R"("height":16,"prerender":true,"width":9})"));
        QCOMPARE(JobMembers({range(0, 1, 2, "")}, 32, 16, 1).value("width"_s).toInt(), 32);
    }

    void StoredMessagesFollowTheLanguage_data() { AddRows(MessageCases()); }

    void StoredMessagesFollowTheLanguage()
    {
        const auto& [name, message, text, otherText] = Row(MessageCases());
        const TaskMessage stored = TaskMessage::FromStored(message.ToStored());
        QCOMPARE(stored.Text(), QString::fromLatin1(text));
        const Capitals other;
        QCOMPARE(stored.Text(), QString::fromLatin1(otherText ? otherText : text));
    }

    void KeepsArgumentsOfTheUser()
    {
        SubmitTask checked = In(Stage::Analyze);
        checked.areArgumentsChecked = true;
        QVERIFY(Done(checked).areArgumentsChecked); // the scene's arguments are the same as before
        checked.arguments = MakeArguments(5, 6, 1, 1);
        SubmitTask edited = checked;
        edited.areArgumentsEdited = true;
        QCOMPARE(Done(edited).arguments, checked.arguments);
        QVERIFY(Done(edited).areArgumentsChecked);
        QCOMPARE(Done(checked).arguments, UsualArguments());
        QVERIFY(!Done(checked).areArgumentsChecked);
        for (const char* scene : {"/ma.pov", "/a.MA", "/a.ma", "/a.mb"}) {
            checked.scene = QString::fromLatin1(scene);
            QCOMPARE(HasEditableArguments(checked), checked.scene.startsWith("/a.m"_s));
        }
    }
};

QTEST_GUILESS_MAIN(SubmitRulesTest)
#include "tst_submit_rules.moc"
