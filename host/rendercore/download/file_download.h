#pragma once

#include "host/rendercore/download/download_limits.h"
#include "host/rendercore/download/download_task.h"

#include <QCryptographicHash>
#include <QElapsedTimer>
#include <QFile>
#include <QObject>
#include <QPointer>
#include <QTimer>

class QNetworkReply;

/// How one attempt to bring a file ended.
struct DownloadOutcome
{
    enum Kind {
        Complete,  ///< the file has its name and is on the disk
        Broken,    ///< for now; what has come is kept
        Outdated,  ///< the farm has another file of that name, or none
        Damaged,   ///< all bytes came, but not the right ones; they are gone
        Failed,    ///< and will again
        NameTaken, ///< by something else on the disk, which stays
        SignedOut, ///< the farm does not know the session
    };

    Kind kind = Broken;
    QString message;    ///< for people; empty for Complete and NameTaken
    int retryAfter = 0; ///< pause that the farm asked for, in milliseconds
};

/// Brings one file from the farm: into its part file, on from where that ends, and under its name once it is proved
/// to be whole. Everything happens in the thread that it was made in, disk included.
class FileDownload : public QObject
{
    Q_OBJECT

public:
    /// @param transport must outlive this object.
    FileDownload(HttpTransport* transport, const QByteArray& token, const DownloadTask& task,
        const DownloadLimits& limits);
    ~FileDownload() override;

    const DownloadTask& Task() const { return m_task; }
    int Progress() const;

    /// To be called once.
    void Start();

signals:
    void Progressed();
    /// The first bytes of this attempt have come.
    void Advanced();
    /// Once, at the end; not emitted when the object is deleted before.
    void Ended(const DownloadOutcome& outcome);

private:
    void TakeWhatIsThere();
    bool IsWhole() const;
    bool TakePart();
    bool OpenPart();
    bool HashPart();
    void StartOver();
    void Ask();
    void Accept(int status);
    void Refuse(int status);
    void Receive();
    void Conclude();
    void Finish();
    void Fail(const QString& message);
    void End(DownloadOutcome::Kind kind, const QString& message = {}, int retryAfter = 0);
    void DropReply();

    HttpTransport* m_transport;
    QByteArray m_token;
    DownloadTask m_task;
    DownloadLimits m_limits;
    QString m_partFile;
    QFile m_part; // without a name while it is open
    QCryptographicHash m_hash {QCryptographicHash::Sha256};
    qint64 m_offset = 0; // how much of the file is in the part file and in the hash
    QPointer<QNetworkReply> m_reply;
    QTimer m_idle;
    QElapsedTimer m_reported;
    bool m_accepted = false; // what comes now are the file's bytes
    bool m_startedOver = false;
    bool m_ended = false;
};
