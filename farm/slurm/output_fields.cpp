#include "farm/slurm/output_fields.h"

namespace farm {

std::vector<QStringList> FieldsIn(const QByteArray& output, int count)
{
    std::vector<QStringList> all;
    const QStringList lines = QString::fromUtf8(output).split(QLatin1Char('\n'));
    for (const QString& line : lines) {
        const QStringList fields = line.split(QLatin1Char('|'));
        if (fields.size() >= count)
            all.push_back(fields.mid(0, count - 1) << fields.mid(count - 1).join(QLatin1Char('|')));
    }
    return all;
}

} // namespace farm
