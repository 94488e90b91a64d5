#pragma once

#include "host/rendercore/download/download_paths.h"
#include "host/rendercore/download/download_queue.h"
#include "host/rendercore/download/download_store.h"
#include "tests/host/stand_in_server.h"
#include "tests/support/disk_calls.h"
#include "tests/support/test_files.h"
#include "tests/support/test_tables.h"

using HttpReply = StandInServer::Reply;

enum Status { Waiting, Downloading, Finished, Failed, Stopped };

inline const QByteArray FrameData = QByteArray(150000, 'q') + "the end";
inline const QByteArray OtherData = QByteArray(90000, 'x') + "the other end";

/// Data of the right size that do not have the right checksum.
inline QByteArray Wrong()
{
    return QByteArray(FrameData.size(), 'z');
}

inline QByteArray Checksum(const QByteArray& content)
{
    return QCryptographicHash::hash(content, QCryptographicHash::Sha256).toHex();
}

/// An entry of a list of files.
inline QByteArray Entry(const QByteArray& content, const QByteArray& name = "frame_0001.png")
{
    return "{'name': '" + name + "', 'size': " + QByteArray::number(content.size()) + ", 'checksum': '"
        + Checksum(content) + "'}";
}

inline HttpReply Listed(const QByteArray& entries)
{
    return StandInServer::Data("{'list': [" + entries + "]}");
}

inline HttpReply Whole(const QByteArray& content)
{
    return StandInServer::Http(200, content);
}

inline HttpReply Rest(const QByteArray& content, int from, int size = FrameData.size())
{
    return StandInServer::Http(206, content.mid(from),
        "Content-Range: bytes " + QByteArray::number(from) + '-' + QByteArray::number(content.size() - 1)
            + '/' + QByteArray::number(size) + "\r\n");
}

inline HttpReply Answer(int status, const QByteArray& headers = {})
{
    return StandInServer::Http(status, "{}", headers);
}

inline constexpr int CutAt = 100007; // bytes of a frame that arrive before it is cut
inline const HttpReply CutFrame {Whole(FrameData).bytes.chopped(50000), false};
inline const QByteArray RangeLine = "Range: bytes=100007-\r\n";

/// A queue of one owner, and the signals that the window receives from it.
class Client
{
public:
    Client(const QString& folder, const QUrl& server, const DownloadLimits& limits)
        : queue(folder + "/transfer"_s, limits)
        , access {FarmApiRoot(server), "abc"_s, "farm/ann"_s, folder + "/frames"_s}
    {
        queue.SetAccess(access);
    }

    void Order(const QString& job = "j1"_s, bool isManual = true)
    {
        queue.Order({{job, QVariantMap {{"subDir"_s, "12_shot"_s}, {"manual"_s, int(isManual)}}}});
    }

    /// Changes one value of the access.
    template <typename Value>
    void Set(Value FarmAccess::*member, const Value& value)
    {
        access.*member = value;
        queue.SetAccess(access);
    }

    /// The ids in the order of the map, which is also that of the positions.
    QStringList Ids() const
    {
        QStringList placed;
        while (!queue.IdAt(placed.size()).isEmpty())
            placed.append(queue.IdAt(placed.size()));
        return placed == queue.Tasks()->keys() ? placed : QStringList {"the order is wrong"_s};
    }
    QVariant Value(const char* key) const
    {
        return queue.Tasks()->isEmpty() ? QVariant()
                                        : queue.Tasks()->first().toMap().value(QLatin1String(key));
    }
    int Count(Status status) const
    {
        const QVariantMap& tasks = *queue.Tasks();
        return int(std::count_if(tasks.cbegin(), tasks.cend(),
            [status](const QVariant& task) { return task.toMap().value("status"_s) == int(status); }));
    }
    bool Await(Status status, int count = 1) const
    {
        return QTest::qWaitFor([&] { return Count(status) == count; }, Patience);
    }
    bool AwaitFiles(int count) const
    {
        return QTest::qWaitFor([&] { return finished.count() == count; }, Patience);
    }

    mutable DownloadQueue queue;
    FarmAccess access;
    QSignalSpy finished {&queue, &DownloadQueue::FilesFinished};
    QSignalSpy notices {&queue, &DownloadQueue::Notice};
    QSignalSpy changed {&queue, &DownloadQueue::ListChanged};
};

/// A folder, a server that misbehaves and the client between them.
class DownloadFixture : public QObject
{
protected:
    static DownloadLimits Impatient()
    {
        DownloadLimits limits;
        limits.transfers = limits.lists = 1; // the server's replies come in order
        limits.idleTime = 2 * Patience;
        limits.firstPause = 5;
        limits.longestPause = 40;
        limits.http.firstPause = 1;
        return limits;
    }

    QString Path(const char* name) const { return m_folder->filePath(QString::fromLatin1(name)); }
    QString Frame() const { return Path("frames/12_shot/frame_0001.png"); }
    QString Part() const { return DownloadPaths::PartFile(Frame()); }
    DownloadStore Disk() const { return DownloadStore(Path("transfer/downloads.sqlite")); }
    bool AwaitRequests(int count) const
    {
        return QTest::qWaitFor([&] { return m_server->Requests().size() == count; }, Patience);
    }

    /// Starts a client among these replies.
    Client& Restart(const QList<HttpReply>& replies)
    {
        m_client.reset(); // before another one uses its folder
        m_server = std::make_unique<StandInServer>();
        m_server->SetReplies(replies);
        m_client = std::make_unique<Client>(m_folder->path(), m_server->Url(), m_limits);
        return *m_client;
    }

    /// Starts a client and orders a job.
    Client& Start(const QList<HttpReply>& replies, bool isManual = true)
    {
        Restart(replies);
        m_client->Order("j1"_s, isManual);
        return *m_client;
    }

    void MakeFolder()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_limits = Impatient();
    }

    DownloadLimits m_limits;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<StandInServer> m_server;
    std::unique_ptr<Client> m_client;
};
