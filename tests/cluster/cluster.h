#pragma once

#include "tests/support/test_tables.h"
#include "tests/support/worker_process.h"

#include <QTemporaryDir>

/// A Slurm cluster with the nodes n1 and n2, each of one core, on this machine. It ends with this object.
class Cluster
{
    QTemporaryDir m_folder;
    WorkerProcess m_script {QStringLiteral(CLUSTER_SCRIPT), {m_folder.filePath("cluster"_s)}};

public:
    Cluster()
    {
        if (!m_script.Await("ready"))
            reason = "there is no cluster: "_s + QString::fromUtf8(m_script.Line("skip: "));
        qputenv("SLURM_CONF", m_folder.filePath("cluster/slurm.conf"_s).toUtf8());
    }

    ~Cluster()
    {
        m_script.closeWriteChannel();
        m_script.waitForFinished();
    }

    /// @param command "kill", "stop", "start", "hide", "drain" or "resume", followed by the name of a node or
    /// "controller", and by the path to hide or the reason for draining.
    bool Do(const QString& command)
    {
        m_script.write(command.toUtf8() + '\n');
        return m_script.Await("done: " + command.toUtf8());
    }

    /// Why it does not run; empty when it does.
    QString reason;
};
