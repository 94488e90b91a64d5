// State changes of submissions.
#include "host/rendercore/submit/submit_arguments.h"
#include "host/rendercore/submit/submit_rules.h"
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
    task.work.missing = QStringList {"gone.png"_s};
    return task;
}

/// The outcome of the stage that a task is in; the next stage follows.
StageOutcome OutcomeOf(
    const SubmitTask& task, const QStringList& missing = {"gone.png"_s}, const QStringList& refused = {})
{
    StageOutcome outcome;
    outcome.stage = task.next;
    outcome.next = static_cast<Stage>(int(task.next) + 1);
    outcome.error = Error::UploadRefused;
    outcome.message = "12"_s;
    outcome.arguments = UsualArguments();
    outcome.refused = refused;
    outcome.work.scene = "new"_s;
    outcome.work.missing = missing;
    return outcome;
}

SubmitTask Done(SubmitTask task, const QStringList& missing = {"gone.png"_s})
{
    ApplyDone(task, OutcomeOf(task, missing));
    return task;
}

SubmitTask Failed(SubmitTask task, const QStringList& refused = {})
{
    ApplyFailed(task, OutcomeOf(task, {}, refused));
    return task;
}

template <typename Change, typename... Values>
SubmitTask Changed(SubmitTask task, Change change, const Values&... values)
{
    change(task, values...);
    return task;
}

SubmitTask WithNext(SubmitTask task, Stage next, bool isDone = false)
{
    task.next = next;
    task.isDone = isDone;
    return task;
}

QString Summary(const SubmitTask& task)
{
    static const char* const questions[] = {"", "retry? ", "missing? "};
    QString flags = QLatin1String(questions[int(QuestionOf(task))]);
    flags += QLatin1String(task.isDone ? "done " : "") + QLatin1String(task.goesOnWithout ? "without " : "");
    flags += QLatin1String(task.areArgumentsChecked ? "checked " : "");
    return "%1>%2 %3 %4% %5 %6%7|%8 %9"_s.arg(int(task.stage))
        .arg(int(task.next))
        .arg(int(task.error))
        .arg(task.progress)
        .arg(task.work.scene, flags, task.message, task.uploadText, task.refused.join(QLatin1Char(',')));
}

} // namespace

class SubmitRulesTest : public QObject
{
    Q_OBJECT

private slots:
    /// The summary: stage shown > stage to come, error, progress, work, flags, texts and refused files.
    void ChangesTheTask_data()
    {
        QTest::addColumn<QString>("summary");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char* name, const SubmitTask& task, const char* expected) {
            QTest::newRow(name) << Summary(task) << QString::fromLatin1(expected);
        };

        row("analysed", Done(In(Stage::Analyze)), "1>2 0 100% new | old");
        row("packed", Done(In(Stage::Compress)), "2>3 0 100% new | old");
        row("nothing is missing", Done(In(Stage::CopySame), {}), "4>5 0 100% new | old");
        row("asks for missing files", Done(In(Stage::CopySame)), "4>4 9 100% new missing? gone.png| old");
        row("goes on without them", Done(In(Stage::CopySame, Error::None, true)),
            "4>5 0 100% new without | old");
        row("stopped before the question", Done(In(Stage::CopySame, Error::Stopped)),
            "4>4 7 50% new why|half old");
        row("stopped, yet a stage further", Done(In(Stage::Upload, Error::Stopped)),
            "5>6 7 50% new why|half old");
        row("is a job", Done(In(Stage::Submit)), "7>7 0 100% old done Submitted as job 12.| old");
        row("is a job in spite of a stop", Done(In(Stage::Submit, Error::Stopped)),
            "7>7 0 100% old done Submitted as job 12.| old");
        row("the same is missing", Done(In(Stage::Analyze, Error::None, true)),
            "1>2 0 100% new without | old");
        row("less is missing", Done(In(Stage::Analyze, Error::None, true), {}),
            "1>2 0 100% new without | old");
        row("more is missing", Done(In(Stage::Analyze, Error::None, true), {"gone.png"_s, "b"_s}),
            "1>2 0 100% new | old");

        row("refused upload", Failed(In(Stage::Upload), {"a"_s, "b"_s}),
            "5>5 3 50% new retry? 12\na\nb| a,b");
        row("refused package", Failed(In(Stage::Uncompress), {"a"_s}), "6>1 3 50% new retry? 12\na| a");
        row("cannot be packed", Failed(In(Stage::Compress)), "2>1 3 50% old retry? 12| old");
        row("package cannot be read", Failed(In(Stage::Checksum)), "3>1 3 50% old retry? 12| old");
        row("refused job", Failed(In(Stage::Submit)), "7>7 3 50% old retry? 12| old");
        row("to be tried again", Changed(In(Stage::Upload), ApplyTryAgain, OutcomeOf(In(Stage::Upload))),
            "5>6 0 50% new 12|12 old");

        row("released", Changed(In(Stage::Upload, Error::Stopped), Release), "0>5 0 0% old |half ");
        row("tries an upload again", Changed(In(Stage::Upload, Error::UploadRefused), Continue, true),
            "0>5 0 0% old |half ");
        row("packs anew", Changed(In(Stage::Upload, Error::UploadRefused), Continue, false),
            "0>1 0 0% old |half ");
        row("looks again", Changed(In(Stage::CopySame, Error::AwaitsUser), Continue, true),
            "0>1 0 0% old without |half ");
        row("without after all", Changed(In(Stage::CopySame, Error::TexturesMissing), Continue, true),
            "0>1 0 0% old without |half ");
        row("checked arguments", Changed(In(Stage::Submit, Error::AwaitsUser), Continue, true),
            "0>7 0 0% old checked |half ");
        row("unusable scene", Changed(In(Stage::Analyze, Error::SceneUnusable), Continue, false),
            "0>1 0 0% old |half ");
        row("halted", Changed(In(Stage::Upload), Halt, Error::Stopped, "now"_s), "5>5 7 50% old now| old");
        row("goes on in its stage", Changed(In(Stage::Upload), EnterNextStage), "5>5 0 50% old why|half old");
        row("enters its next stage", Changed(WithNext(In(Stage::Upload), Stage::Submit), EnterNextStage),
            "7>7 0 0% old | old");

        row("restored with packages", Changed(In(Stage::Upload, Error::Stopped), Restore, true),
            "5>4 7 0% old why|half old");
        row("restored without", Changed(In(Stage::Upload, Error::Stopped), Restore, false),
            "5>1 7 0% old why|half old");
        row("restored with spoilt ones", Changed(In(Stage::Uncompress, Error::UploadRefused), Restore, true),
            "6>1 3 0% old retry? why|half old");
        row("restored with a refused upload", Changed(In(Stage::Upload, Error::UploadRefused), Restore, true),
            "5>4 3 0% old retry? why|half old");
        row("restored before its analysis", Changed(SubmitTask(), Restore, true), "0>1 0 0%  | ");
        row("restored as a job", Changed(WithNext(SubmitTask(), Stage::Submit, true), Restore, false),
            "0>1 0 100%  done | ");
    }

    void ChangesTheTask()
    {
        QFETCH(QString, summary);
        QTEST(summary, "expected");
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
