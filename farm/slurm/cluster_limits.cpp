#include "farm/slurm/cluster_limits.h"

#include <QMap>

#include <chrono>

namespace farm {

ClusterLimits ReadLimits(const QByteArray& config)
{
    QMap<QString, QString> values;
    const QStringList lines = QString::fromUtf8(config).split(QLatin1Char('\n'));
    for (const QString& line : lines)
        values[line.section(QLatin1Char('='), 0, 0).trimmed()] = line.section(QLatin1Char('='), 1).trimmed();
    // "300 sec"
    const auto number = [&values](const char* name, int otherwise) {
        bool isNumber = false;
        const int value = values.value(QLatin1String(name)).section(QLatin1Char(' '), 0, 0).toInt(&isNumber);
        return isNumber && value > 0 ? value : otherwise;
    };
    ClusterLimits limits;
    limits.arraySize = number("MaxArraySize", limits.arraySize);
    limits.jobs = number("MaxJobCount", limits.jobs);
    limits.secondsKept = number("MinJobAge", limits.secondsKept);
    const QString accounting = values.value(QStringLiteral("AccountingStorageType"));
    limits.hasAccounting = accounting.endsWith(QLatin1String("slurmdbd"));
    return limits;
}

QStringList Warnings(const ClusterLimits& limits, const SlurmSettings& settings)
{
    QStringList warnings;
    const int tasks = settings.frames / settings.framesPerTask;
    if (tasks > limits.jobs)
        warnings.append(
            QStringLiteral("the cluster keeps %1 tasks at a time (MaxJobCount), fewer than the %2 that the "
                           "farm may submit; further ones wait in the farm")
                .arg(limits.jobs)
                .arg(tasks));
    if (!limits.hasAccounting && !settings.account.isEmpty())
        warnings.append(
            QStringLiteral("the cluster has no accounting, so it ignores the account \"%1\" that the "
                           "farm names")
                .arg(settings.account));
    const std::chrono::seconds kept {limits.secondsKept};
    if (!limits.hasAccounting && kept < 3 * settings.interval)
        warnings.append(QStringLiteral(
            "the cluster forgets tasks %1 s after their end (MinJobAge) and has no accounting; "
            "why a frame ended may remain unknown")
                            .arg(limits.secondsKept));
    return warnings;
}

} // namespace farm
