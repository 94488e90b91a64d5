#pragma once

#include "processes/bound_process.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>
#include <QUrl>

/// Runs the embedded farm, a server process on a free loopback port, and restarts it when it crashes.
///
/// The farm exits when its standard input is closed, so it never outlives the host.
class FarmProcess : public QObject
{
    Q_OBJECT

public:
    /// Times are in milliseconds.
    struct Limits
    {
        int start = 20000;    ///< for the process to announce its address
        int firstPause = 500; ///< the pause before the first restart; doubled before each further one
        int restarts = 6;     ///< number of restarts in a row before giving up
        int steady = 10000;   ///< time of listening after which earlier failures no longer count
        int end = 4000;       ///< for the process to exit by itself before it is terminated, then killed
    };

    FarmProcess(
        const QString& program, const QString& dataFolder, const Limits& limits, QObject* parent = nullptr);
    FarmProcess(const QString& program, const QString& dataFolder, QObject* parent = nullptr);

    /// Calls `Stop()`.
    ~FarmProcess() override;

    void Start();

    /// Stops the farm permanently and waits for it to end, for a few seconds at most.
    void Stop();

    /// Lets the farm use its data even if another machine has left it locked.
    void SetTakeOver(bool isOn) { m_takesOver = isOn; }

    /// @return false before Start(), and after the farm has been stopped or given up.
    bool IsWanted() const { return m_wanted; }

    /// @return 0 while the farm is not running.
    qint64 ProcessId() const { return m_process.processId(); }

    /// @return the address that a line of the farm's output announces; empty for any other line.
    static QUrl ReadAnnouncement(const QByteArray& line);

signals:
    /// The farm accepts requests at this address, which changes with each restart.
    void Listening(const QUrl& url);

    /// The farm has ended unexpectedly. Either a restart or GivenUp follows.
    /// @param reason for the user: the last line of the farm's log, or the reason why there is none.
    void Lost(const QString& reason);

    /// The farm has ended too often and is not restarted.
    void GivenUp(const QString& reason);

private:
    /// Ends with the client even if that is killed, because its standard input ends then.
    class Process : public BoundProcess
    {
        void setupChildProcess() override { Unbind(); }
    };

    void Launch();
    void ReadOutput();
    void ReadLog();
    QString Reason() const;
    void HandleExit();
    void HandleStartTimeout();

    QString m_program;
    QString m_dataFolder;
    Limits m_limits;
    Process m_process;
    QTimer m_startDeadline;
    QTimer m_restart;
    QElapsedTimer m_listening;
    QByteArray m_log; // the end of the farm's log since it was launched
    int m_failures = 0;
    bool m_takesOver = false;
    bool m_isTooSlow = false; // it was killed because it did not announce its address in time
    bool m_wanted = false;
};
