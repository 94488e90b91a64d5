#pragma once

#include "tests/support/waiting.h"

#include <QElapsedTimer>
#include <QProcess>

/// A program in a process of its own that reports its work line by line on its standard output. It is killed with this
/// object.
class WorkerProcess : public QProcess
{
public:
    WorkerProcess(const QString& program, const QStringList& arguments)
    {
        setProcessChannelMode(QProcess::ForwardedErrorChannel);
        start(program, arguments);
    }

    ~WorkerProcess() override { Kill(); }

    /// Kills the process; Lines() then holds all its reports.
    void Kill()
    {
        kill();
        waitForFinished();
        Lines();
    }

    /// Waits for a line that begins so. @return false when the process ends or takes too long before it.
    bool Await(const QByteArray& beginning)
    {
        QElapsedTimer clock;
        clock.start();
        while (!Has(beginning) && state() != QProcess::NotRunning && !clock.hasExpired(Patience))
            waitForReadyRead(Patience);
        return Has(beginning);
    }

    bool Has(const QByteArray& beginning) { return !Line(beginning).isNull(); }

    /// @return the rest of the first line that begins so; null when there is none.
    QByteArray Line(const QByteArray& beginning)
    {
        for (const QByteArray& line : Lines()) {
            if (line.startsWith(beginning))
                return line.mid(beginning.size()) + "";
        }
        return {};
    }

    /// The complete lines so far.
    const QByteArrayList& Lines()
    {
        while (canReadLine())
            m_lines.append(readLine().chopped(1));
        return m_lines;
    }

private:
    QByteArrayList m_lines;
};
