#pragma once

#include <QProcess>

/// A process that does not outlive the thread that has launched it, even if this program is killed.
///
/// QProcess makes the new process wait until this program has registered it. If this program is killed first, the process
/// of a plain QProcess waits for ever as a copy of this program, and keeps its locks and files. The binding begins before
/// that wait, which setupChildProcess() would not.
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
