#include "farm/slurm/cluster_task.h"

#include "farm/slurm/output_fields.h"

namespace farm {

std::vector<ClusterTask> ReadQueue(const QByteArray& output)
{
    std::vector<ClusterTask> tasks;
    for (const QStringList& fields : FieldsIn(output, 6)) {
        bool isTask = false;
        const int index = fields[2].toInt(&isTask);
        if (isTask)
            tasks.push_back({fields[0], index, fields[1] + QLatin1Char('_') + fields[2], fields[3], fields[4],
                fields[5] == QLatin1String("None") ? QString() : fields[5]});
    }
    return tasks;
}

std::vector<ClusterTask> ReadAccounting(const QByteArray& output)
{
    std::vector<ClusterTask> tasks;
    for (const QStringList& fields : FieldsIn(output, 4)) {
        bool isTask = false;
        const int index = fields[1].section(QLatin1Char('_'), 1).toInt(&isTask);
        // "CANCELLED by 1000"
        const QString state = fields[2].section(QLatin1Char(' '), 0, 0);
        const bool hasNode = fields[3] != QLatin1String("None assigned");
        if (isTask)
            tasks.push_back({fields[0], index, fields[1], state, hasNode ? fields[3] : QString(), {}});
    }
    return tasks;
}

} // namespace farm
