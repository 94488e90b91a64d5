// Turns, pauses and commands, without threads, disk or network.
#include "host/rendercore/download/automatic_orders.h"
#include "host/rendercore/download/finish_notice.h"
#include "host/rendercore/download/task_commands.h"
#include "host/rendercore/download/transfer_schedule.h"
#include "host/rendercore/submit/submit_turns.h"
#include "tests/support/test_tables.h"
#include "tests/support/waiting.h"

namespace {

using Obstacle = StageOutcome::Obstacle;
using Steps = std::map<char, std::function<void(int)>>;

/// A name, the steps to play, each a letter usually followed by a number, and the answers to them.
using Script = std::tuple<const char*, const char*, const char*>;

void Play(const char* script, const Steps& steps)
{
    const QByteArrayList given = QByteArray(script).split(' ');
    for (const QByteArray& step : given)
        steps.at(step.at(0))(step.mid(1).toInt());
}

/// Plays a script. @return which task gets the turn each time, or how long to wait.
QString PlayTurns(const char* script)
{
    SubmitTurns turns;
    qint64 now = 1000;
    std::set<qint64> local;
    QStringList answers;
    // "r205" is a failed request of task 2, with a pause of 5 seconds that the farm asks for.
    const auto postpone = [&](Obstacle obstacle, int number) {
        const int seconds = number < 10 ? 0 : number % 100;
        if (!turns.Postpone(number < 10 ? number : number / 100, obstacle, seconds, now))
            answers.append("given_up"_s);
    };
    const auto decide = [&](int) {
        const auto decision = turns.Next(now, [&](qint64 task) { return local.count(task) == 0; });
        const QString wait = decision.wait ? "wait:%1"_s.arg(*decision.wait) : "none"_s;
        answers.append(decision.task ? QString::number(*decision.task) : wait);
    };
    Play(script,
        {
            {'?', decide},
            {'+', [&](int task) { turns.Add(task); }},
            {'-', [&](int task) { turns.Remove(task); }},
            {'@', [&](int milliseconds) { now += milliseconds; }},
            {'l', [&](int task) { local.insert(task); }}, // does not need the farm
            {'o', [&](int) { turns.SetFarm(true); }},
            {'a', [&](int task) { turns.RecordAnswer(task, true); }}, // with progress
            {'b', [&](int task) { turns.RecordAnswer(task, false); }},
            {'r', [&](int number) { postpone(Obstacle::Request, number); }},
            {'f', [&](int number) { postpone(Obstacle::Farm, number); }},
            {'s', [&](int number) { postpone(Obstacle::Session, number); }},
            {'p', [&](int number) { postpone(Obstacle::Program, number); }},
        });
    return answers.join(QLatin1Char(' '));
}

const Script TurnsScripts[] = {
    {"no tasks", "o ?", "none"},
    {"keeps the turn until it halts", "o +5 +2 +9 ? ? -2 ? -5 ? -9 ?", "2 2 5 9 none"},
    {"goes round in a circle", "o +5 +2 +9 ? r2 ? r5 ? r9 ? @500 ?", "2 5 9 wait:500 2"},
    {"a new task waits for its turn", "o +5 ? +2 ? -5 ?", "5 5 2"},
    {"without a farm", "+1 +2 ? l2 ? o ? -2 ?", "none 2 2 1"},
    {"others go on while a program works", "o +1 l1 +2 ? p1 ? -2 ? @300 ?", "1 2 wait:300 1"},
    {"farm away for all but local stages", "o +1 +2 +3 ? f1 ? l3 ? -3 @499 ? @1 ?", "1 wait:500 3 wait:1 1"},
    {"the farm's pause doubles", "o +1 ? f1 ? @500 ? f1 ? @1000 ? f1 ?",
        "1 wait:500 1 wait:1000 1 wait:2000"},
    {"an answer ends the doubling", "o +1 f1 @500 f1 @1000 b1 f1 ?", "wait:500"},
    {"a refused request ends the doubling", "o +1 f1 @500 r1 @500 f1 ?", "wait:500"},
    {"the farm's requested pause counts", "o +1 f103 ? @3000 ?", "wait:3000 1"},
    {"but not a shorter one than ours", "o +1 f1 f1 f1 f101 ?", "wait:4000"},
    {"a task's pause doubles", "o +1 r1 ? @500 r1 ? @1000 ?", "wait:500 wait:1000 1"},
    {"the task's own requested pause", "o +1 r104 ?", "wait:4000"},
    {"gives up without progress", "o +1 r1 r1 r1 r1 r1 r1 r1 ? r1", "wait:32000 given_up"},
    {"progress starts the count again", "o +1 r1 r1 r1 r1 r1 r1 r1 a1 r1 ?", "wait:500"},
    {"an answer without progress does not", "o +1 r1 r1 r1 r1 r1 r1 r1 b1 r1", "given_up"},
    {"released tasks start the count again", "o +1 r1 r1 r1 r1 r1 r1 r1 -1 +1 r1 ?", "wait:500"},
    {"another task's failures do not count", "o +1 +2 r1 r1 r1 r1 r1 r1 r1 r2 ?", "wait:500"},
    {"the shortest wait counts", "o +1 +2 r1 r1 r2 r1 ?", "wait:500"},
    {"the session ends for all", "o +1 +2 +3 l3 s1 ? -3 ? o ?", "3 none 1"},
    {"a new farm ends all pauses", "o +1 +2 r1 f2 o ?", "1"},
    {"a new farm ends the doubling", "o +1 f1 f1 f1 o f1 ?", "wait:500"},
};

/// Tells the pause of each failure, and which task is due. Two failures in a row pause all transfers.
QString PlaySchedule(const char* script)
{
    TransferSchedule schedule {Backoff(100, 1000), 2};
    qint64 now = 0;
    int asked = 0;
    QStringList answers;
    const auto answer
        = [&](std::optional<qint64> number) { answers.append(number ? QString::number(*number) : "none"_s); };
    Play(script,
        {
            {'p', [&](int task) { answer(schedule.Postpone(task, asked, now)); }},
            {'?',
                [&](int) {
                    answer(schedule.NextDue(now));
                    schedule.Take(schedule.NextDue(now).value_or(0));
                }},
            {'d', [&](int) { answer(schedule.NextDue(now)); }}, // without taking it
            {'w', [&](int) { answer(schedule.Wait(now)); }},
            {'i', [&](int) { answers.append(schedule.IsPaused(now) ? "paused"_s : "open"_s); }},
            {'@', [&](int milliseconds) { now += milliseconds; }},
            {'a', [&](int milliseconds) { asked = milliseconds; }}, // the pause that the farm asks for
            {'g', [&](int task) { schedule.RecordProgress(task); }},
            {'x', [&](int task) { schedule.Forget(task); }},
            {'r', [&](int task) { schedule.RetryNow(task); }},
            {'e', [&](int) { schedule.EndPause(); }},
            {'c', [&](int) { schedule.Clear(); }},
        });
    return answers.join(QLatin1Char(' '));
}

const Script ScheduleScripts[] = {
    {"retries after a pause", "w p7 i @40 w @59 ? @1 w @100 w ? ? w",
        "none 100 open 60 none 0 0 7 none none"},
    {"the pause doubles, the last one counts", "p7 @100 ? p7 p7 @200 ? @200 ?", "100 7 200 400 none 7"},
    {"up to the longest pause", "p7 p7 p7 p7 p7 p7", "100 200 400 800 1000 1000"},
    {"progress ends the doubling", "p7 p7 g7 @200 ? p7", "100 200 7 100"},
    {"a forgotten task", "p7 p7 x7 @9000 ? p7", "100 200 none 100"},
    {"nothing is left", "p7 p7 c i @9000 ? p7 i", "100 200 open none 100 open"},
    {"the lowest due task first", "p9 @10 p4 r6 r5 w ? @190 ? ? ? ?", "100 100 0 5 4 6 9 none"},
    {"a retry forgets failures", "p4 p4 r4 ? @9000 ? p4", "100 200 4 none 100"},
    {"failures in a row pause all", "p1 i p2 i @150 w @49 i @1 i", "100 open 100 paused 50 paused open"},
    {"the next round pauses longer", "p1 p2 p3 p4 @399 i @1 i", "100 100 100 100 paused open"},
    {"a retry ends the pause", "p1 p2 r5 i", "100 100 open"},
    {"progress ends the pause and the row", "p1 p2 g9 i p3 i p4 i", "100 100 open 100 open 100 paused"},
    {"due until it is taken", "p7 @100 d d w ? w p7", "100 7 7 0 7 none 200"},
    {"the pause is ended", "p1 p2 e i", "100 100 open"},
    {"all pause when the farm asks", "a5000 p1 @4999 i @1 i", "5000 paused open"},
    {"no shorter pause follows", "a5000 p1 a0 p2 @4999 i", "5000 100 paused"},
    {"an hour at most", "a7200000 p1 @3599999 i @1 i", "3600000 paused open"},
};

/// The states after a command in the states waiting, downloading, finished, failed and stopped; "-" where it does not
/// apply.
const std::tuple<const char*, bool (*)(DownloadTask&), const char*> CommandCases[] = {
    {"stop", TaskCommands::Stop, "4----"},
    {"resume", TaskCommands::Resume, "---00"},
    {"download again", TaskCommands::Redownload, "00000"},
    {"repair", TaskCommands::Repair, "--0--"},
};

/// The latest file and the number of files of each job that arrives, and what the user reads.
const std::tuple<const char*, std::vector<std::pair<const char*, int>>, const char*> Arrivals[] = {
    {"a file", {{"/d/12_shot/f.png", 1}}, "/d/12_shot/f.png"},
    {"a job", {{"/d/12_shot/f.png", 2}}, "12_shot: 2 frames"},
    {"a job twice", {{"/d/12_shot/f.png", 1}, {"/d/12_shot/g.png", 3}}, "12_shot: 4 frames"},
    {"two jobs", {{"/d/12_shot/f.png", 1}, {"/d/13_shot/f.png", 1}}, "12_shot and 13_shot: 2 frames"},
    {"more jobs", {{"/d/a/f", 1}, {"/d/b/f", 20}, {"/d/c/f", 300}}, "3 jobs: 321 frames"},
};

} // namespace

class TransferRulesTest : public QObject
{
    Q_OBJECT

private slots:
    void GivesTurns_data() { AddRows(TurnsScripts); }

    void GivesTurns()
    {
        const auto& [name, script, answers] = Row(TurnsScripts);
        QCOMPARE(PlayTurns(script), QString::fromLatin1(answers));
    }

    void SchedulesRetries_data() { AddRows(ScheduleScripts); }

    void SchedulesRetries()
    {
        const auto& [name, script, answers] = Row(ScheduleScripts);
        QCOMPARE(PlaySchedule(script), QString::fromLatin1(answers));
    }

    void CommandsChangeTasks_data() { AddRows(CommandCases); }

    void CommandsChangeTasks()
    {
        const auto& [name, command, states] = Row(CommandCases);
        const bool isFromStart = command != TaskCommands::Stop && command != TaskCommands::Resume;
        for (int state = 0; state < 5; ++state) {
            DownloadTask task;
            task.state = static_cast<DownloadState>(state);
            task.progress = 50;
            task.message = "why"_s;
            const bool applies = states[state] != '-';
            QCOMPARE(command(task), applies);
            QCOMPARE(int(task.state), applies ? states[state] - '0' : state);
            QCOMPARE(task.message.IsEmpty(), applies);
            QCOMPARE(task.progress, applies && isFromStart ? 0 : 50);
            const bool replaces = applies && command == TaskCommands::Redownload;
            QCOMPARE(task.fresh, replaces && state == int(DownloadState::Finished));
        }
    }

    void RepeatsTheOrderOfAJobThatIsFinishedAgain()
    {
        enum { Running = 1, Finished = 4, ToFullRender = 6 };
        AutomaticOrders orders;
        const auto list = [&orders](int status, const char* cost) {
            const QVariantMap job {
                {"job_id"_s, "j"_s}, {"job_status"_s, status}, {"job_cost"_s, QLatin1String(cost)}};
            return orders.Repeat({job}).keys();
        };
        const QStringList none;
        const QVariantMap order {{"subDir"_s, "12_shot"_s}, {"manual"_s, 0}};
        QCOMPARE(list(Running, "1"), none);
        QCOMPARE(list(Finished, "1"), none); // the window's turn
        orders.Remember({{"j"_s, order}});
        QCOMPARE(list(Finished, "1"), none);
        QCOMPARE(list(ToFullRender, "1"), none);
        QCOMPARE(list(Finished, "1"), QStringList("j"_s));
        QCOMPARE(list(Finished, "1"), none);
        QCOMPARE(list(Finished, "2"), QStringList("j"_s)); // between two lists
        orders.Clear();
        QCOMPARE(list(Running, "2"), none);
        QCOMPARE(list(Finished, "2"), none);
    }

    void TellsTogetherWhatArrivesTogether_data() { AddRows(Arrivals); }

    void TellsTogetherWhatArrivesTogether()
    {
        const auto& [name, arrivals, expected] = Row(Arrivals);
        FinishNotice notice(0, 0);
        QSignalSpy due(&notice, &FinishNotice::Due);
        notice.Add("/d/other/f.png"_s, 1);
        notice.Clear();
        for (int round = 1; round <= 2; ++round) {
            for (const auto& [file, count] : arrivals)
                notice.Add(QLatin1String(file), count);
            EVENTUALLY_COMPARE(due.count(), round);
            QCOMPARE(due.constLast(), QVariantList {QString::fromLatin1(expected)});
        }
    }
};

QTEST_GUILESS_MAIN(TransferRulesTest)
#include "tst_transfer_rules.moc"
