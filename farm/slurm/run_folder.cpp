#include "farm/slurm/run_folder.h"

#include "farm/runner/run_order.h"

#include <QFile>

namespace farm {

namespace {

constexpr qint64 LongestComplaint = 400; // bytes

QString StartedFile(const RunLook& look)
{
    return look.files.folder + QStringLiteral("/started");
}

/// Creates the file unless a node has created it.
bool Close(const RunLook& look)
{
    QFile file(StartedFile(look));
    return file.open(QIODevice::WriteOnly | QIODevice::NewOnly);
}

} // namespace

RunFinding Look(const RunLook& look)
{
    RunFinding finding;
    finding.run = look.run;
    if (look.closes)
        finding.isClosed = Close(look);
    QFile started(StartedFile(look));
    if (started.open(QIODevice::ReadOnly)) {
        const QString line = QString::fromUtf8(started.readLine(1000)).trimmed();
        finding.node = line.section(QLatin1Char(' '), 0, 0);
        finding.startedAt = line.section(QLatin1Char(' '), 1).toLongLong();
    }
    if (look.wantsOutcome)
        finding.outcome = ReadOutcome(look.files.Outcome());
    QFile complaint(look.files.folder + QStringLiteral("/runner.txt"));
    if (look.wantsOutcome && !finding.outcome && complaint.open(QIODevice::ReadOnly))
        finding.complaint
            = QString::fromUtf8(complaint.read(LongestComplaint)).trimmed().section(QLatin1Char('\n'), -1);
    return finding;
}

void RunFolders::LookAt(const std::vector<RunLook>& looks)
{
    std::vector<RunFinding> findings;
    findings.reserve(looks.size());
    for (const RunLook& look : looks)
        findings.push_back(Look(look));
    emit Looked(findings);
}

} // namespace farm
