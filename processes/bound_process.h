#pragma once

#include <QProcess>

/// A process that does not outlive the thread that has launched it, even if this program is killed.
///
/// QProcess makes the new process wait until this program has registered it. If this program is killed first, a process
/// of a plain QProcess waits for ever as a copy of this program, and keeps its locks and files open. The binding takes
/// effect before that wait; one made in setupChildProcess() would come after it.
class BoundProcess : public QProcess
{
    Q_OBJECT

public:
    using QProcess::QProcess;

    /// Starts the program that has been set. On systems other than Linux this is QProcess::start().
    void Launch();

protected:
    /// For setupChildProcess(): lets the new program outlive this one.
    static void Unbind();
};
