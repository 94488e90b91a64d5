#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QProcess>
#include <QTimer>
#include <QUrl>

/// The embedded farm: a server process of the host's own, started on a free loopback port and kept running.
///
/// It ends when its standard input does, so it does not survive the host, however that ends.
class FarmProcess : public QObject
{
    Q_OBJECT

public:
    /// Times in milliseconds.
    struct Patience
    {
        int start = 20000;    ///< from the start of the process to its address
        int firstPause = 500; ///< before the first restart; doubled before each further one
        int restarts = 6;     ///< in a row, before it is given up
        int steady = 10000;   ///< of taking requests, after which earlier failures no longer count
        int end = 4000;       ///< from the end of its input to its own, before it is made to end
    };

    FarmProcess(const QString& program, const QString& dataFolder, const Patience& patience,
        QObject* parent = nullptr);
    FarmProcess(const QString& program, const QString& dataFolder, QObject* parent = nullptr);

    /// Ends the farm as Stop does.
    ~FarmProcess() override;

    void Start();

    /// Ends the farm and waits for it, a few seconds at the most. It is not restarted.
    void Stop();

    /// 0 when it is not running.
    qint64 ProcessId() const { return m_process.processId(); }

    /// The address in a line of the farm's output, empty where the line is no announcement of one.
    static QUrl AnnouncedAddress(const QByteArray& line);

signals:
    /// The farm takes requests at this address; again, with another one, after each restart.
    void Listening(const QUrl& url);

    /// The farm is not running; it is started again where that has not been tried too often.
    void Lost();
    void GivenUp(const QString& reason);

private:
    void Launch();
    void ReadOutput();
    void HandleEnd();
    void HandleLate();

    QString m_program;
    QString m_dataFolder;
    Patience m_patience;
    QProcess m_process;
    QTimer m_startDeadline;
    QTimer m_restart;
    QElapsedTimer m_listening;
    int m_failures = 0;
    bool m_wanted = false;
};
