#include "farm/demo_data.h"

#include "farm/accounts/account_store.h"
#include "farm/accounts/account_terms.h"
#include "farm/accounts/ledger.h"
#include "farm/accounts/project_store.h"
#include "farm/jobs/frame_store.h"
#include "farm/jobs/job_actions.h"
#include "farm/jobs/job_store.h"
#include "farm/jobs/job_turn.h"

#include <array>

namespace farm {

namespace {

constexpr int PastJobs = 52;
constexpr std::int64_t Hour = 3600;
constexpr std::int64_t ThreeWeeks = Hour * 24 * 21;

struct Sequence
{
    const char* name;
    const char* scene;
};

constexpr std::array<Sequence, 8> Sequences {{
    {"harbour", "lighthouse.pov"},
    {"orrery", "orrery.pov"},
    {"temple", "colonnade.pov"},
    {"water", "ripples.pov"},
    {"storm", "lighthouse.pov"},
    {"comet", "orrery.pov"},
    {"arcade", "colonnade.pov"},
    {"credits", "ripples.pov"},
}};

struct DemoProject
{
    const char* name;
    const char* pool;
};

constexpr std::array<DemoProject, 3> DemoProjects {{
    {"Harbour Lights", "pool-harbour"},
    {"Celestial", "pool-celestial"},
    {"Main Titles", "pool-titles"},
}};

struct LiveJob
{
    const char* name;
    const char* scene;
    int frames;
    JobStatus status;
};

// The first job is finished within a minute, so that there are pictures to fetch.
constexpr std::array<LiveJob, 10> LiveJobs {{
    {"water_test", "ripples.pov", 6, JobStatus::Running},
    {"harbour_sh110", "lighthouse.pov", 120, JobStatus::Running},
    {"orrery_sh110", "orrery.pov", 90, JobStatus::Running},
    {"temple_sh110", "colonnade.pov", 150, JobStatus::Waiting},
    {"water_sh110", "ripples.pov", 100, JobStatus::Waiting},
    {"storm_sh110", "lighthouse.pov", 96, JobStatus::Waiting},
    {"comet_sh110", "orrery.pov", 120, JobStatus::Waiting},
    {"arcade_sh110", "colonnade.pov", 75, JobStatus::Waiting},
    {"credits_sh110", "ripples.pov", 125, JobStatus::Waiting},
    {"harbour_sh120", "lighthouse.pov", 120, JobStatus::Waiting},
}};

const QString Failure = QStringLiteral("the renderer ended with code 1");
constexpr const char* FailureLog
    = "\n==== [Parsing...] ==========================================================\n"
      "File 'main.pov' line 31: Parse Error: Cannot find image map 'maps/sail.png'.\n"
      "Fatal error in parser: Cannot parse input.\nRender failed";

JobStatus PastStatus(int index)
{
    if (index == 7)
        return JobStatus::Deleted;
    if (index == PastJobs - 4)
        return JobStatus::ToFullRender;
    if (index == PastJobs - 2 || index == PastJobs - 9)
        return JobStatus::Pending;
    if (index % 11 == 5)
        return JobStatus::Paused;
    if (index % 9 == 4)
        return JobStatus::Failed;
    return JobStatus::Finished;
}

int FramesDone(JobStatus status, int frames)
{
    switch (status) {
    case JobStatus::Finished:
        return frames;
    case JobStatus::Paused:
    case JobStatus::PausedInArrears:
        return frames / 2;
    case JobStatus::Failed:
    case JobStatus::Deleted:
        return frames / 3;
    case JobStatus::ToFullRender:
        return 1;
    default:
        return 0;
    }
}

NewJob PastJob(int index, std::int64_t now)
{
    const Sequence& sequence = Sequences.at(static_cast<std::size_t>(index) % Sequences.size());
    const int shot = 10 * (index / static_cast<int>(Sequences.size()) + 1);
    NewJob job;
    job.type = QStringLiteral("povray");
    job.name = QStringLiteral("%1_sh%2").arg(QLatin1String(sequence.name)).arg(shot, 3, 10, QLatin1Char('0'));
    // Users may choose any name. This one reveals whether a client takes names for markup.
    if (index == 0)
        job.name = QStringLiteral("<b>title</b>_v2");
    if (index == PastJobs - 6) {
        job.name += QStringLiteral("_pre");
        job.prerender = true;
    }
    job.rendering = index % 4 != 3;
    job.status = PastStatus(index);
    job.scene = QLatin1String(sequence.scene);
    job.frames = {{1, 24 + index * 17 % 97}};
    job.submittedAt
        = now - ThreeWeeks + index * (ThreeWeeks - 3 * Hour) / PastJobs + std::int64_t {index} * 613 % Hour;
    return job;
}

// Records the job as if it had been rendered, but without pictures.
void AddPastJob(SQLite::Database& connection, JobStore& jobs, const NewJob& job)
{
    const std::int64_t key = jobs.Add(job).key;
    const int done = FramesDone(job.status, FrameCount(job.frames));
    Execute(connection, "UPDATE frames SET finished_at = ?2 + number * 40 WHERE job = ?1 AND number <= ?3",
        key, job.submittedAt, done);
    Execute(connection,
        "INSERT INTO charges(account, job, frame, core_milliseconds, amount, charged_at) "
        "SELECT ?2, job, number, 6000 + number * 7919 % 9000, (6000 + number * 7919 % 9000) * ?3 / 1000, "
        "finished_at FROM frames WHERE job = ?1 AND finished_at IS NOT NULL",
        key, job.account, DefaultPrice);
    if (job.status != JobStatus::Finished && job.status != JobStatus::Failed)
        return;
    Execute(connection, "UPDATE jobs SET ended_at = ?2, message = ?3 WHERE key = ?1", key,
        job.submittedAt + std::int64_t(done) * 40, job.status == JobStatus::Failed ? Failure : QString());
    if (job.status != JobStatus::Failed)
        return;
    Execute(connection, "UPDATE frames SET failures = ?3, retry_at = ?4 WHERE job = ?1 AND number = ?2", key,
        done + 1, AttemptsPerFrame, PassedBy);
    KeepFrameLog(connection, key, done + 1, Failure + QLatin1String(FailureLog));
}

struct DemoAccount
{
    const char* name;
    Micros balance;
    Micros secondBalance;
};

constexpr DemoAccount Demo {"demo", 65'980'000, 12'500'000};
constexpr DemoAccount Studio {"studio", 1'280'500'000, 300'000'000};
// The account's balance ran out while one job was being rendered and others were waiting.
constexpr DemoAccount Arrears {"arrears", -370'000, 0};

std::int64_t AddAccount(AccountStore& accounts, const DemoAccount& demo)
{
    NewAccount account;
    account.name = QLatin1String(demo.name);
    account.email = account.name + QStringLiteral("@quillstar.example");
    account.password = account.name;
    account.bound = true;
    account.secondBalance = demo.secondBalance;
    return accounts.Add(account);
}

// Pays in the amount that, less the charges of the past jobs, gives the balance.
void PayIn(SQLite::Database& connection, std::int64_t account, const DemoAccount& demo, std::int64_t now)
{
    SQLite::Statement query(connection, "SELECT balance FROM accounts WHERE key = ?");
    Bind(query, account);
    query.executeStep();
    AddPayment(connection, account, demo.balance - query.getColumn(0).getInt64(),
        QStringLiteral("opening balance"), now - ThreeWeeks);
}

std::int64_t AddProject(
    ProjectStore& projects, const DemoProject& project, const DemoAccount& member, std::int64_t now)
{
    const std::int64_t key = projects.Add({QLatin1String(project.name), QLatin1String(project.pool)}, now);
    projects.Assign(QLatin1String(project.pool), QLatin1String(member.name), now);
    return key;
}

void AddDemo(SQLite::Database& connection, AccountStore& accounts, ProjectStore& projects, JobStore& jobs,
    std::int64_t now)
{
    const std::int64_t account = AddAccount(accounts, Demo);
    std::vector<std::int64_t> keys;
    keys.reserve(DemoProjects.size());
    for (const DemoProject& project : DemoProjects)
        keys.push_back(AddProject(projects, project, Demo, now));
    for (int index = 0; index < PastJobs; ++index) {
        NewJob job = PastJob(index, now);
        job.account = account;
        job.project = keys.at(static_cast<std::size_t>(index) % keys.size());
        AddPastJob(connection, jobs, job);
    }
    PayIn(connection, account, Demo, now);
}

void AddStudio(SQLite::Database& connection, AccountStore& accounts, ProjectStore& projects, JobStore& jobs,
    std::int64_t now)
{
    const std::int64_t account = AddAccount(accounts, Studio);
    const std::int64_t project = AddProject(projects, {"Showreel", "pool-showreel"}, Studio, now);
    for (int index = 0; index < PastJobs; index += 9) {
        NewJob job = PastJob(index, now);
        job.account = account;
        job.project = project;
        AddPastJob(connection, jobs, job);
    }
    PayIn(connection, account, Studio, now);
}

void AddArrears(SQLite::Database& connection, AccountStore& accounts, JobStore& jobs, std::int64_t now)
{
    constexpr std::array<JobStatus, 5> Statuses {JobStatus::Finished, JobStatus::Finished,
        JobStatus::PausedInArrears, JobStatus::Arrears, JobStatus::Arrears};
    const std::int64_t account = AddAccount(accounts, Arrears);
    for (std::size_t index = 0; index < Statuses.size(); ++index) {
        NewJob job = PastJob(static_cast<int>(index), now);
        job.account = account;
        job.status = Statuses.at(index);
        AddPastJob(connection, jobs, job);
    }
    PayIn(connection, account, Arrears, now);
}

void AddLiveJobs(JobStore& jobs, std::int64_t account, std::int64_t now)
{
    std::int64_t age = LiveJobs.size();
    for (const LiveJob& live : LiveJobs) {
        NewJob job;
        job.account = account;
        job.type = QStringLiteral("povray");
        job.name = QLatin1String(live.name);
        job.scene = QLatin1String(live.scene);
        job.frames = {{1, live.frames}};
        job.status = live.status;
        job.submittedAt = now - age-- * 60;
        jobs.Add(job);
    }
}

/// The ids of the live jobs that the account has not deleted.
QStringList FindLiveJobs(SQLite::Database& connection, std::int64_t account)
{
    QStringList ids;
    for (const LiveJob& live : LiveJobs) {
        SQLite::Statement query(
            connection, "SELECT id FROM jobs WHERE account = ? AND name = ? AND status <> 5");
        Bind(query, account, QString(QLatin1String(live.name)));
        while (query.executeStep())
            ids.append(QString::fromUtf8(query.getColumn(0).getText()));
    }
    return ids;
}

} // namespace

QStringList DemoAccounts()
{
    return {QLatin1String(Demo.name), QLatin1String(Studio.name), QLatin1String(Arrears.name)};
}

void ProvideDemo(Database& database, AccountStore& accounts, JobStore& jobs, std::int64_t now)
{
    ProjectStore projects(database, {QStringLiteral("the farm"), QStringLiteral("its demo data")});
    const QStringList ended = database.Write([&](SQLite::Database& connection) {
        if (accounts.IsEmpty()) {
            AddDemo(connection, accounts, projects, jobs, now);
            AddStudio(connection, accounts, projects, jobs, now);
            AddArrears(connection, accounts, jobs, now);
            AddLiveJobs(jobs, accounts.Find(QStringLiteral("demo")).value(), now);
        }
        const auto demo = accounts.Find(QStringLiteral("demo"));
        return demo && !jobs.HasOpenJobs(*demo) ? FindLiveJobs(connection, *demo) : QStringList();
    });
    // Jobs are restarted instead of added, so that the list does not grow.
    ChangeFeed unheard;
    if (!ended.isEmpty())
        JobActions(database, unheard, AccountTerms(DefaultPrice, 0), [] {
        }).Apply(JobAction::Restart, accounts.Find(QStringLiteral("demo")).value(), ended, now);
}

} // namespace farm
