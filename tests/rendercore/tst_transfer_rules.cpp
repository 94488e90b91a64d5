// Turns, pauses and commands, without threads, disk or network.
#include "host/rendercore/download/task_commands.h"
#include "host/rendercore/download/transfer_schedule.h"
#include "host/rendercore/submit/submit_turns.h"
#include "tests/support/test_tables.h"

namespace {

using Obstacle = StageOutcome::Obstacle;

/// Plays a script of steps, each a letter usually followed by a task number; records who gets the turn.
class TurnsPlay
{
public:
    QString Run(const char* script)
    {
        for (const QByteArray& step : QByteArray(script).split(' '))
            Do(step.at(0), step.mid(1).toInt());
        return m_decisions.join(QLatin1Char(' '));
    }

private:
    void Do(char step, int number)
    {
        switch (step) {
        case '+':
            m_turns.Add(number);
            break;
        case '-':
            m_turns.Remove(number);
            break;
        case '@': // that many milliseconds pass
            m_now += number;
            break;
        case 'l': // the task does not need the farm
            m_local.insert(number);
            break;
        case 'o': // there is a farm
            m_turns.SetFarm(true);
            break;
        case 'a': // the farm answers the task, with progress
        case 'b': // without progress
            m_turns.RecordAnswer(number, step == 'a');
            break;
        case 'r': // the farm cannot fulfil a request; "r205": of task 2, for 5 seconds
            Postpone(Obstacle::Request, number);
            break;
        case 'f': // the farm cannot be reached
            Postpone(Obstacle::Farm, number);
            break;
        case 's': // the session has ended
            Postpone(Obstacle::Session, number);
            break;
        default:
            Decide();
        }
    }

    void Postpone(Obstacle obstacle, int number)
    {
        const int seconds = number < 10 ? 0 : number % 100;
        if (!m_turns.Postpone(number < 10 ? number : number / 100, obstacle, seconds, m_now))
            m_decisions.append("given_up"_s);
    }

    void Decide()
    {
        const auto decision = m_turns.Next(m_now, [this](qint64 task) { return m_local.count(task) == 0; });
        if (decision.task)
            m_decisions.append(QString::number(*decision.task));
        else
            m_decisions.append(decision.wait ? "wait:%1"_s.arg(*decision.wait) : "none"_s);
    }

    SubmitTurns m_turns;
    qint64 m_now = 1000;
    std::set<qint64> m_local;
    QStringList m_decisions;
};

struct TurnsCase
{
    const char* name;
    const char* script;
    const char* decisions;
};

const TurnsCase TurnsCases[] = {
    {"no tasks", "o ?", "none"},
    {"keeps the turn until it halts", "o +5 +2 +9 ? ? -2 ? -5 ? -9 ?", "2 2 5 9 none"},
    {"goes round in a circle", "o +5 +2 +9 ? r2 ? r5 ? r9 ? @500 ?", "2 5 9 wait:500 2"},
    {"a new task waits for its turn", "o +5 ? +2 ? -5 ?", "5 5 2"},
    {"without a farm", "+1 +2 ? l2 ? o ? -2 ?", "none 2 2 1"},
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

struct CommandCase
{
    const char* name;
    bool (*command)(DownloadTask&);
    const char*
        states; ///< waiting, downloading, finished, failed, stopped; "-" where the command does not apply
};

const CommandCase CommandCases[] = {
    {"stop", TaskCommands::Stop, "4----"},
    {"resume", TaskCommands::Resume, "---00"},
    {"download again", TaskCommands::Redownload, "00000"},
    {"repair", TaskCommands::Repair, "--0--"},
};

} // namespace

class TransferRulesTest : public QObject
{
    Q_OBJECT

private:
    /// Two failures in a row pause all transfers.
    TransferSchedule m_schedule {Backoff(100, 1000), 2};

    std::optional<int> Waits(int milliseconds) const { return milliseconds; }

private slots:
    void init() { m_schedule.Clear(); }

    void GivesTurns_data() { AddRows(TurnsCases); }

    void GivesTurns()
    {
        QCOMPARE(TurnsPlay().Run(Row(TurnsCases).script), QString::fromLatin1(Row(TurnsCases).decisions));
    }

    void PausesDouble()
    {
        Backoff backoff(300, 8000);
        QList<int> pauses;
        while (backoff.Failures() < 7)
            pauses.append(backoff.Fail());
        QCOMPARE(pauses, QList<int>({300, 600, 1200, 2400, 4800, 8000, 8000}));
        backoff.Reset();
        QCOMPARE(backoff.Fail(), 300);
        QCOMPARE(backoff.PauseAfter(1000), 8000);
        QCOMPARE(Backoff(900, 500).Fail(), 500);
    }

    void TriesAgainAfterAPauseOfTheTask()
    {
        QCOMPARE(m_schedule.Postpone(7, 0, 1000), 100);
        QVERIFY(!m_schedule.IsPaused(1000));
        QVERIFY(!m_schedule.NextDue(1099));
        QCOMPARE(m_schedule.Wait(1040), Waits(60));
        QCOMPARE(m_schedule.Wait(1200), Waits(0));
        QCOMPARE(m_schedule.NextDue(1100), std::optional<qint64>(7));
        QVERIFY(!m_schedule.NextDue(1100));
        QVERIFY(!m_schedule.Wait(1100));
        QCOMPARE(m_schedule.Postpone(7, 0, 1100), 200);
        QCOMPARE(m_schedule.Postpone(7, 0, 1100), 400); // a second postponement replaces the first
        QVERIFY(!m_schedule.NextDue(1499));
        m_schedule.RecordProgress(7);
        QCOMPARE(m_schedule.NextDue(1500), std::optional<qint64>(7));
        QCOMPARE(m_schedule.Postpone(7, 0, 2000), 100);
        m_schedule.Forget(7);
        QVERIFY(!m_schedule.NextDue(9000));
        QCOMPARE(m_schedule.Postpone(7, 0, 9000), 100);
        m_schedule.Clear();
        QVERIFY(!m_schedule.NextDue(19000) && !m_schedule.IsPaused(9000));
        QCOMPARE(m_schedule.Postpone(7, 0, 9000), 100);
    }

    void HandsOutDueTasksByNumber()
    {
        m_schedule.Postpone(9, 0, 0);
        m_schedule.Postpone(4, 0, 10);
        m_schedule.RetryNow(6);
        m_schedule.RetryNow(5);
        QCOMPARE(m_schedule.Wait(0), Waits(0));
        QList<qint64> handedOut;
        while (const auto id = m_schedule.NextDue(handedOut.isEmpty() ? 0 : 200))
            handedOut.append(*id);
        QCOMPARE(handedOut, QList<qint64>({5, 4, 6, 9}));
        m_schedule.Postpone(4, 0, 200);
        m_schedule.RetryNow(4); // its failures are forgotten
        QCOMPARE(m_schedule.NextDue(200), std::optional<qint64>(4));
        QVERIFY(!m_schedule.NextDue(9000));
        QCOMPARE(m_schedule.Postpone(4, 0, 200), 100);
    }

    void PausesAllAfterFailuresInARow()
    {
        m_schedule.Postpone(1, 0, 0);
        QVERIFY(!m_schedule.IsPaused(0));
        m_schedule.Postpone(2, 0, 0);
        QVERIFY(m_schedule.IsPaused(199) && !m_schedule.IsPaused(200)); // the first round of two
        QCOMPARE(m_schedule.Wait(150), Waits(50));
        m_schedule.Postpone(3, 0, 200);
        m_schedule.Postpone(4, 0, 200);
        QVERIFY(m_schedule.IsPaused(599) && !m_schedule.IsPaused(600)); // the second one
        m_schedule.RetryNow(5);
        QVERIFY(!m_schedule.IsPaused(300));
        m_schedule.Postpone(5, 0, 300);
        m_schedule.RecordProgress(1);
        QVERIFY(!m_schedule.IsPaused(300));
        m_schedule.Postpone(5, 0, 300);
        QVERIFY(!m_schedule.IsPaused(300)); // the first failure in a row again
        m_schedule.Postpone(5, 0, 300);
        m_schedule.EndPause();
        QVERIFY(!m_schedule.IsPaused(300));
    }

    void PausesAllWhenTheFarmAsks()
    {
        QCOMPARE(m_schedule.Postpone(1, 5000, 0), 5000);
        QVERIFY(m_schedule.IsPaused(4999) && !m_schedule.IsPaused(5000));
        m_schedule.Postpone(2, 0, 10); // does not shorten the pause
        QVERIFY(m_schedule.IsPaused(4999));
        m_schedule.Clear();
        QCOMPARE(m_schedule.Postpone(1, 7200 * 1000, 0), 3600 * 1000);
        QVERIFY(!m_schedule.IsPaused(3600 * 1000));
    }

    void CommandsChangeTasks_data() { AddRows(CommandCases); }

    void CommandsChangeTasks()
    {
        const CommandCase& row = Row(CommandCases);
        for (int state = 0; state < 5; ++state) {
            DownloadTask task;
            task.state = static_cast<DownloadState>(state);
            task.progress = 50;
            task.message = "why"_s;
            const DownloadTask before = task;
            const bool applies = row.states[state] != '-';
            QCOMPARE(row.command(task), applies);
            QCOMPARE(int(task.state), applies ? row.states[state] - '0' : state);
            QCOMPARE(task.message.isEmpty(), applies);
            const bool fromStart
                = applies && (row.command != TaskCommands::Stop && row.command != TaskCommands::Resume);
            QCOMPARE(task.progress, fromStart ? 0 : 50);
            QCOMPARE(task.fresh, fromStart && before.state == DownloadState::Finished);
        }
    }
};

QTEST_GUILESS_MAIN(TransferRulesTest)
#include "tst_transfer_rules.moc"
