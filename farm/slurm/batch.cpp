#include "farm/slurm/batch.h"

#include "farm/base/random.h"
#include "farm/rendering/job_types.h"

#include <algorithm>
#include <tuple>

namespace farm {

namespace {

constexpr std::int64_t Mebibyte = 1 << 20;

auto KeyOf(const Placement& placement)
{
    const Resources& resources = placement.resources;
    return std::make_tuple(placement.partition, placement.account, placement.qos, placement.constraint,
        placement.framesPerTask, resources.cores, resources.memory, resources.gpus, resources.licences,
        resources.timeLimit.count());
}

/// The task's time limit in minutes. quillstar-run-frame limits each frame; this limit is for the case that it fails
/// to.
qint64 Minutes(const Placement& placement)
{
    constexpr std::chrono::seconds Spare {120};
    const std::chrono::seconds most = (placement.resources.timeLimit + Spare) * placement.framesPerTask;
    return std::chrono::duration_cast<std::chrono::minutes>(most + std::chrono::seconds {59}).count();
}

} // namespace

bool operator<(const Placement& one, const Placement& other)
{
    return KeyOf(one) < KeyOf(other);
}

QString Quoted(QString text)
{
    return QLatin1Char('\'') + text.replace(QLatin1Char('\''), QLatin1String("'\\''")) + QLatin1Char('\'');
}

Placement PlacementFor(const SlurmSettings& settings, const JobType& type)
{
    const auto choose = [&type](const char* name, const QString& otherwise) {
        return type.slurm.value(QLatin1String(name), otherwise);
    };
    Placement placement {choose("partition", settings.partition), choose("account", settings.account),
        choose("qos", settings.qos), choose("constraint", settings.constraint), settings.framesPerTask,
        type.resources};
    placement.framesPerTask = choose("frames_per_task", QString::number(settings.framesPerTask)).toInt();
    return placement;
}

QString ClusterJobPrefix()
{
    return QStringLiteral("quillstar-");
}

QString NewBatchName(int framesPerTask)
{
    return ClusterJobPrefix() + QStringLiteral("%1-%2").arg(framesPerTask).arg(NewId());
}

int FramesPerTask(const QString& batchName)
{
    return std::max(1, batchName.section(QLatin1Char('-'), 1, 1).toInt());
}

QStringList SubmitArguments(const Batch& batch, const QStringList& leftOut)
{
    const Placement& placement = batch.placement;
    const Resources& resources = placement.resources;
    QStringList arguments {QStringLiteral("--parsable"), QStringLiteral("--job-name=") + batch.name,
        QStringLiteral("--array=1-%1").arg(batch.TaskCount()),
        // The farm decides whether to try again; a task that Slurm repeated would not begin its frames again.
        QStringLiteral("--no-requeue"), QStringLiteral("--nodes=1"), QStringLiteral("--ntasks=1"),
        QStringLiteral("--cpus-per-task=%1").arg(resources.cores),
        QStringLiteral("--time=%1").arg(Minutes(placement)), QStringLiteral("--chdir=/"),
        QStringLiteral("--output=/dev/null"), QStringLiteral("--export=ALL")};
    if (resources.memory > 0)
        arguments.append(QStringLiteral("--mem=%1M").arg((resources.memory + Mebibyte - 1) / Mebibyte));
    if (resources.gpus > 0)
        arguments.append(QStringLiteral("--gres=gpu:%1").arg(resources.gpus));
    const std::pair<const char*, QString> optional[] {
        {"--licenses=", resources.licences.join(QLatin1Char(','))}, {"--partition=", placement.partition},
        {"--account=", placement.account}, {"--qos=", placement.qos}, {"--constraint=", placement.constraint},
        {"--exclude=", leftOut.join(QLatin1Char(','))}};
    for (const auto& [option, value] : optional) {
        if (!value.isEmpty())
            arguments.append(QLatin1String(option) + value);
    }
    return arguments;
}

// The file "started" is created only once: a run that anybody has begun, or that the farm has given up, is never begun
// again. When Slurm ends a task, it signals all of its processes, so the shell only has to leave its loop.
QByteArray BatchScript(int framesPerTask, const QString& list, const QString& runner)
{
    static const QString script = QStringLiteral(R"sh(#!/bin/sh
PATH=${PATH:-/usr/local/bin:/usr/bin:/bin}
last=$((SLURM_ARRAY_TASK_ID * %1))
runs=$(sed -n "$((last - %1 + 1)),${last}p" %2) || exit 66
ended=
trap 'ended=1' TERM
while [ -z "$ended" ] && IFS= read -r run; do
    (set -C; echo "$SLURMD_NODENAME $(date +%s)" >"$run/started") 2>/dev/null || continue
    %3 "$run/order.json" </dev/null 2>"$run/runner.txt"
done <<END
$runs
END
)sh");
    return script.arg(QString::number(framesPerTask), Quoted(list), Quoted(runner)).toUtf8();
}

} // namespace farm
