#pragma once

#include "host/farmclient/connection_feed.h"
#include "host/rendercore/download/download_limits.h"
#include "host/rendercore/download/download_task.h"
#include "storage/checksum.h"

#include <QElapsedTimer>
#include <QFile>
#include <QObject>
#include <QPointer>
#include <QTimer>

#include <memory>

class FileHashing;
class QNetworkReply;

/// The result of an attempt to download a file.
struct DownloadOutcome
{
    enum Kind {
        Complete,       ///< the whole file is at its destination, on the disk
        Broken,         ///< another attempt may succeed; the data received so far are kept
        Outdated,       ///< the farm has another file of that name, or none
        Damaged,        ///< the checksum of the received data is wrong; they are deleted
        Failed,         ///< another attempt would fail as well
        DiskUnusable,   ///< nothing can be saved in the download folder at the moment
        FolderUnusable, ///< nothing can be saved in the job's folder at the moment
        NameTaken,      ///< something else is at the destination, and stays there
        SignedOut,      ///< the farm does not know the session
    };

    Kind kind = Broken;
    TaskMessage message; ///< for the user; empty for Complete, NameTaken and SignedOut
    int error = 0;       ///< the `errno` of DiskUnusable and FolderUnusable
    int retryAfter = 0;  ///< the pause that the farm asks for, in milliseconds
};

/// Downloads one file: appends to its part file, and moves that to the destination once the checksum is right. What is on
/// the disk already is hashed in a thread of its own, everything else happens in this object's thread.
class FileDownload : public QObject
{
    Q_OBJECT

public:
    /// @param transport must outlive this object.
    FileDownload(HttpTransport* transport, const QByteArray& token, const DownloadTask& task,
        const DownloadLimits& limits);
    ~FileDownload() override;

    const DownloadTask& Task() const { return m_task; }
    /// @return percent.
    int Progress() const;

    /// Must be called only once.
    void Start();

signals:
    void Progressed();
    /// The first data of this attempt have arrived.
    void Advanced();
    /// Emitted once, unless the object is deleted before.
    void Ended(const DownloadOutcome& outcome);

private:
    bool HasNoRoom(const QString& folder) const;
    void AdoptExistingFile();
    void JudgeExistingFile();
    void LoadPart();
    bool OpenPart();
    void Continue();
    void HashOnDisk(void (FileDownload::*next)());
    void StartOver();
    void Ask();
    void Accept(int status);
    void Refuse();
    void Receive();
    void Conclude();
    void HandleBreak();
    void Finish();
    void FailToSave(int error);
    void End(DownloadOutcome::Kind kind, const TaskMessage& message = {}, int retryAfter = 0, int error = 0);
    void DropReply();

    HttpTransport* m_transport;
    HttpRequest m_request;
    ConnectionFeed::Transfer m_transfer;
    DownloadTask m_task;
    DownloadLimits m_limits;
    QString m_partFile;
    QFile m_part;                           // opened by its descriptor, so it has no name
    std::unique_ptr<FileHashing> m_hashing; // ends before the file that it reads
    storage::Sha256 m_hash;
    qint64 m_offset = 0; // bytes of the file that are in the part file and in the hash
    QPointer<QNetworkReply> m_reply;
    QTimer m_idle;
    QElapsedTimer m_reported;
    bool m_accepted = false; // the answer holds the file's data
    bool m_startedOver = false;
    bool m_ended = false;
};
