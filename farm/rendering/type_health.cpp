#include "farm/rendering/type_health.h"

namespace farm {

namespace {

// Limits the memory that a job takes whose thousands of frames fail for hours.
constexpr std::size_t LongestRow = 50;

} // namespace

void TypeHealth::Stop(const QString& type, std::int64_t now)
{
    Health& health = m_types[type];
    health.stopped = true;
    health.confirmed = true;
    health.nextTrial = now;
    health.nextTrialOfAnyJob = now;
}

bool TypeHealth::IsStopped(const QString& type) const
{
    return m_types.value(type).stopped;
}

TypeHealth::Trial TypeHealth::TrialOf(const QString& type, std::int64_t now) const
{
    const Health health = m_types.value(type);
    if (now >= health.nextTrialOfAnyJob)
        return Trial::AnyJob;
    return now >= health.nextTrial ? Trial::OtherJob : Trial::None;
}

void TypeHealth::BeginTrial(const QString& type, const Attempt& attempt, std::int64_t now)
{
    Health& health = m_types[type];
    if (DoubtfulJobs(type).count(attempt.frame.job) != 0)
        health.tried.clear();
    health.tried[attempt.frame.job] = attempt.account;
    health.trial = attempt.frame;
    health.nextTrial = now + TrialInterval;
    health.nextTrialOfAnyJob = now + TrialInterval;
}

bool TypeHealth::Succeeded(const QString& type, const Attempt& attempt)
{
    const Health before = m_types.take(type);
    std::set<std::int64_t> blamed = before.blamed;
    // A frame that began before the type was stopped tells nothing about the renderer's state since.
    if (before.stopped && IsTrial(before, attempt.frame)) {
        for (const Attempt& failure : before.row)
            blamed.insert(failure.account);
    }
    blamed.erase(attempt.account);
    if (!blamed.empty())
        m_types[type].blamed = blamed;
    return before.stopped;
}

TypeHealth::Verdict TypeHealth::Failed(
    const QString& type, const Attempt& attempt, std::int64_t seconds, std::int64_t now)
{
    Health& health = m_types[type];
    if (health.stopped) {
        // Other frames of the jobs that failed before may still have been in work; their failures tell nothing new.
        const bool tells = IsTrial(health, attempt.frame) || JobsOf(health).count(attempt.frame.job) == 0;
        const bool isNew = tells && !health.confirmed;
        health.confirmed = health.confirmed || tells;
        return isNew ? Verdict::Confirmed : Verdict::Sick;
    }
    if (health.blamed.count(attempt.account) != 0)
        return Verdict::Alive;
    if (seconds > QuickSeconds)
        health.row.clear();
    else
        health.row.push_back(attempt);
    if (health.row.size() > LongestRow)
        health.row.erase(health.row.begin());
    if (int(health.row.size()) < FailuresToStop || int(JobsOf(health).size()) < JobsToStop)
        return Verdict::Alive;
    health.stopped = true;
    health.nextTrial = now;
    health.nextTrialOfAnyJob = now + TrialInterval;
    return Verdict::Stopped;
}

std::vector<FrameKey> TypeHealth::FailedInARow(const QString& type) const
{
    std::vector<FrameKey> frames;
    for (const Attempt& failure : m_types.value(type).row)
        frames.push_back(failure.frame);
    return frames;
}

TypeHealth::Jobs TypeHealth::DoubtfulJobs(const QString& type) const
{
    const Health health = m_types.value(type);
    Jobs jobs = JobsOf(health);
    jobs.insert(health.tried.begin(), health.tried.end());
    return jobs;
}

TypeHealth::Jobs TypeHealth::JobsOf(const Health& health)
{
    Jobs jobs;
    for (const Attempt& failure : health.row)
        jobs[failure.frame.job] = failure.account;
    return jobs;
}

bool TypeHealth::IsTrial(const Health& health, const FrameKey& frame)
{
    return !(frame < health.trial) && !(health.trial < frame);
}

} // namespace farm
