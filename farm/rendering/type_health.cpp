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

void TypeHealth::BeginTrial(const QString& type, const FrameKey& frame, std::int64_t now)
{
    Health& health = m_types[type];
    health.trial = frame;
    health.nextTrial = now + TrialInterval;
    health.nextTrialOfAnyJob = now + TrialInterval;
}

bool TypeHealth::Succeeded(const QString& type)
{
    return m_types.take(type).stopped;
}

TypeHealth::Verdict TypeHealth::Failed(
    const QString& type, const FrameKey& frame, std::int64_t seconds, std::int64_t now)
{
    Health& health = m_types[type];
    if (health.stopped) {
        // Other frames of the jobs that failed before may still have been in work; their failures tell nothing new.
        const bool isTrial = !(frame < health.trial) && !(health.trial < frame);
        const bool tells = isTrial || JobsOf(health).count(frame.job) == 0;
        const bool isNew = tells && !health.confirmed;
        health.confirmed = health.confirmed || tells;
        return isNew ? Verdict::Confirmed : Verdict::Sick;
    }
    if (seconds > QuickSeconds)
        health.row.clear();
    else
        health.row.push_back(frame);
    if (health.row.size() > LongestRow)
        health.row.erase(health.row.begin());
    if (int(health.row.size()) < FailuresToStop || int(JobsOf(health).size()) < JobsToStop)
        return Verdict::Alive;
    health.stopped = true;
    health.nextTrial = now;
    health.nextTrialOfAnyJob = now + TrialInterval;
    return Verdict::Stopped;
}

std::set<std::int64_t> TypeHealth::JobsOf(const Health& health)
{
    std::set<std::int64_t> jobs;
    for (const FrameKey& frame : health.row)
        jobs.insert(frame.job);
    return jobs;
}

} // namespace farm
