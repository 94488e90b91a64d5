#pragma once

#include "farm/runner/run.h"

#include <QMetaType>
#include <QObject>

#include <optional>
#include <vector>

namespace farm {

/// A request to look at the files of a run.
struct RunLook
{
    RunId run;
    RunFiles files;
    bool wantsOutcome = true;
    /// Whether to close the run, so that no node can begin with it any more.
    bool closes = false;
};

struct RunFinding
{
    RunId run;
    /// Empty until a node has begun with the run.
    QString node;
    qint64 startedAt = 0; ///< in seconds since the epoch, by the clock of the node
    std::optional<RunResult> outcome;
    /// The last line that quillstar-run-frame, or the shell that starts it, has written.
    QString complaint;
    /// Whether the run has been closed: no node had begun with it, and none will.
    bool isClosed = false;
};

RunFinding Look(const RunLook& look);

/// Looks at the files of runs in a thread of its own, because a shared folder may be slow.
class RunFolders : public QObject
{
    Q_OBJECT

public slots:
    /// Emits Looked() when done.
    void LookAt(const std::vector<farm::RunLook>& looks);

signals:
    void Looked(const std::vector<farm::RunFinding>& findings);
};

} // namespace farm

Q_DECLARE_METATYPE(std::vector<farm::RunLook>)
Q_DECLARE_METATYPE(std::vector<farm::RunFinding>)
