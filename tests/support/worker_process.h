#pragma once

#include "tests/support/waiting.h"

#include <QElapsedTimer>
#include <QProcess>

/// A program in a process of its own that tells on its standard output, line by line, what it has done. It is killed with
/// this object.
class WorkerProcess : public QProcess
{
public:
    WorkerProcess(const QString& program, const QStringList& arguments)
    {
        setProcessChannelMode(QProcess::ForwardedErrorChannel);
        start(program, arguments);
    }

    ~WorkerProcess() override { Kill(); }

    /// Kills the process; Lines() then holds all that it has told.
    void Kill()
    {
        kill();
        waitForFinished();
        Lines();
    }

    /// Reads what the process tells meanwhile. @return whether it has told this line, or one that begins so.
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
