#include "farm/rendering/frame_selection.h"

#include "farm/rendering/queue_settings.h"
#include "farm/rendering/type_health.h"
#include "farm/rendering/work_load.h"

#include <algorithm>

namespace farm {

namespace {

FrameTask ReadTask(SQLite::Database& connection, const FrameKey& frame)
{
    SQLite::Statement job(connection,
        "SELECT account, id, type, scene, width, height, "
        "(SELECT min(first) FROM frame_ranges WHERE job = key), "
        "(SELECT max(last) FROM frame_ranges WHERE job = key) FROM jobs WHERE key = ?");
    Bind(job, frame.job);
    job.executeStep();
    FrameTask task;
    task.key = frame;
    task.account = job.getColumn(0).getInt64();
    task.jobId = Text(job.getColumn(1));
    task.type = Text(job.getColumn(2));
    task.scene = Text(job.getColumn(3));
    task.width = job.getColumn(4).getInt();
    task.height = job.getColumn(5).getInt();
    task.firstFrame = job.getColumn(6).getInt();
    task.lastFrame = job.getColumn(7).getInt();
    return task;
}

} // namespace

FrameSelection::FrameSelection(SQLite::Database& connection, const Dependencies& dependencies,
    const FrameDemand& demand, std::set<FrameKey>& taken, std::int64_t now)
    : m_connection(connection)
    , m_deps(dependencies)
    , m_paused(demand.paused)
    , m_taken(taken)
    , m_now(now)
    , m_choice(connection, taken, demand.paused, now)
{
    for (const QString& type : demand.types)
        (m_deps.health.IsStopped(type) ? m_stoppedTypes : m_types).append(type);
    FindContenders();
}

std::optional<FrameTask> FrameSelection::Next()
{
    while (!m_stoppedTypes.isEmpty()) {
        if (const auto frame = FindTrial(m_stoppedTypes.takeFirst()))
            return Select(*frame);
    }
    const auto isFull = [this](const QString& type) { return !HasRoom(type); };
    m_types.erase(std::remove_if(m_types.begin(), m_types.end(), isFull), m_types.end());
    const auto frame = FindFrame(m_choice, m_contenders, m_types);
    return frame ? std::optional(Select(*frame)) : std::nullopt;
}

bool FrameSelection::HasRoom(const QString& type) const
{
    const int most = m_deps.settings.framesPerType.value(type);
    return most <= 0 || m_deps.load.FramesOfType(type) < most;
}

/// Finds the accounts that have open jobs, with one seek each.
void FrameSelection::FindContenders()
{
    SQLite::Statement query(m_connection,
        "WITH RECURSIVE waiting(account) AS (SELECT min(account) FROM jobs INDEXED BY jobs_in_turn "
        "WHERE status IN (0, 1, 6) AND resume_at = 0 UNION ALL "
        "SELECT (SELECT min(account) FROM jobs INDEXED BY jobs_in_turn WHERE status IN (0, 1, 6) "
        "AND resume_at = 0 AND account > waiting.account) FROM waiting WHERE account IS NOT NULL) "
        "SELECT waiting.account, level, priority FROM waiting JOIN accounts ON accounts.key = "
        "waiting.account "
        "LEFT JOIN account_use ON account_use.account = waiting.account");
    while (query.executeStep()) {
        Contender contender;
        contender.account = query.getColumn(0).getInt64();
        contender.priority = query.getColumn(2).getInt();
        if (!query.isColumnNull(1))
            contender.recentCoreSeconds = m_deps.use.CoreSeconds(query.getColumn(1).getDouble(), m_now);
        contender.framesInWork = m_deps.load.FramesOf(contender.account);
        contender.secondsInWork = m_deps.load.SecondsOf(contender.account, m_now);
        m_contenders.push_back(contender);
    }
}

/// The account with the fewest doubtful jobs is asked first, since the scenes of one may all be bad.
std::optional<FrameKey> FrameSelection::FindTrial(const QString& type)
{
    const TypeHealth::Trial trial = m_deps.health.TrialOf(type, m_now);
    if (trial == TypeHealth::Trial::None || !HasRoom(type))
        return std::nullopt;
    std::set<std::int64_t> avoided = m_paused;
    std::map<std::int64_t, int> doubts;
    for (const auto& [job, account] : m_deps.health.DoubtfulJobs(type)) {
        avoided.insert(job);
        ++doubts[account];
    }
    std::map<int, std::vector<Contender>> byDoubts;
    for (const Contender& contender : m_contenders)
        byDoubts[doubts[contender.account]].push_back(contender);
    FrameChoice others(m_connection, m_taken, avoided, m_now);
    std::optional<FrameKey> frame;
    for (auto next = byDoubts.begin(); !frame && next != byDoubts.end(); ++next)
        frame = FindFrame(others, next->second, {type});
    if (!frame && trial == TypeHealth::Trial::AnyJob) {
        std::vector<Contender> contenders = m_contenders;
        frame = FindFrame(m_choice, contenders, {type});
    }
    if (frame)
        m_deps.health.BeginTrial(type, {*frame, TaskOf(*frame).account}, m_now);
    return frame;
}

/// @param contenders loses those that get no frame.
std::optional<FrameKey> FrameSelection::FindFrame(
    FrameChoice& choice, std::vector<Contender>& contenders, const QStringList& types) const
{
    const int most = m_deps.settings.framesPerAccount;
    for (auto next = FirstInTurn(contenders); next != contenders.end(); next = FirstInTurn(contenders)) {
        const bool hasRoom = most <= 0 || next->framesInWork < most;
        const auto frame = hasRoom ? choice.Of(next->account, types) : std::nullopt;
        if (frame)
            return frame;
        contenders.erase(next);
    }
    return std::nullopt;
}

FrameTask FrameSelection::Select(const FrameKey& frame)
{
    const FrameTask& task = TaskOf(frame);
    m_taken.insert(frame);
    m_deps.load.Add(frame, task.account, task.type);
    for (Contender& contender : m_contenders) {
        if (contender.account == task.account)
            contender.framesInWork = m_deps.load.FramesOf(task.account);
    }
    return task;
}

const FrameTask& FrameSelection::TaskOf(const FrameKey& frame)
{
    const auto known = m_tasks.find(frame.job);
    if (known == m_tasks.end())
        return m_tasks.emplace(frame.job, ReadTask(m_connection, frame)).first->second;
    known->second.key = frame;
    return known->second;
}

} // namespace farm
