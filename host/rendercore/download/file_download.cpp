#include "host/rendercore/download/file_download.h"

#include "host/rendercore/download/download_paths.h"
#include "host/rendercore/download/download_text.h"
#include "host/rendercore/file_hashing.h"
#include "storage/durable_file.h"
#include "storage/folder_check.h"

#include <QDir>
#include <QFileInfo>
#include <QNetworkReply>
#include <QRegularExpression>

#include <cerrno>
#include <fcntl.h>

namespace {

constexpr int BlockBytes = 1024 * 1024;

/// The offset of a partial answer in a file of that size; -1 when the answer belongs to another file.
qint64 RangeStart(const QByteArray& contentRange, qint64 size)
{
    static const QRegularExpression range(QStringLiteral("^bytes ([0-9]{1,18})-[0-9]{1,18}/([0-9]{1,18})$"));
    const QRegularExpressionMatch match = range.match(QString::fromLatin1(contentRange));
    return match.hasMatch() && match.captured(2).toLongLong() == size ? match.captured(1).toLongLong() : -1;
}

/// Whether the error concerns the whole disk.
bool IsOfDisk(int error)
{
    return error == ENOSPC || error == EDQUOT || error == EROFS || error == EIO || error == ESTALE;
}

/// Whether the error is the fault of this one file, which no time mends. All others may pass: folders of other machines
/// fail in many ways.
bool IsOfFile(int error)
{
    switch (error) {
    case EEXIST:
    case EFBIG:
    case EILSEQ:
    case EINVAL:
    case EISDIR:
    case ELOOP:
    case ENAMETOOLONG:
    case ENOTEMPTY:
    case EOVERFLOW:
        return true;
    default:
        return false;
    }
}

QByteArray Encoded(const QString& text)
{
    return QUrl::toPercentEncoding(text);
}

} // namespace

FileDownload::FileDownload(
    HttpTransport* transport, const QByteArray& token, const DownloadTask& task, const DownloadLimits& limits)
    : m_transport(transport)
    , m_transfer(transport->Feed(), ConnectionFeed::Down, task.name)
    , m_task(task)
    , m_limits(limits)
    , m_partFile(DownloadPaths::PartFile(task.file))
{
    m_request.verb = QByteArrayLiteral("GET");
    m_request.target = "/jobs/" + Encoded(m_task.job) + "/files/" + Encoded(m_task.name);
    m_request.token = token;
    m_idle.setSingleShot(true);
    m_idle.setInterval(limits.idleTime);
    connect(&m_idle, &QTimer::timeout, this, [this] {
        m_transport->Report(m_request, {FarmFault::TimedOut});
        End(DownloadOutcome::Broken, {DownloadText::Stalled, {m_task.name}});
    });
}

FileDownload::~FileDownload()
{
    DropReply();
}

int FileDownload::Progress() const
{
    return m_task.size > 0
        ? static_cast<int>(100.0 * static_cast<double>(m_offset) / static_cast<double>(m_task.size))
        : 0;
}

void FileDownload::Start()
{
    const QString folder = QFileInfo(m_task.file).path();
    const QString name = QDir::toNativeSeparators(folder);
    if (!QDir().mkpath(folder))
        FailToSave(storage::FolderError(folder));
    else if (DownloadPaths::LeadsOut(m_task.file))
        End(DownloadOutcome::Failed, {DownloadText::LeadsOut, {name}});
    else if (!m_task.fresh && DownloadPaths::IsOccupied(m_task.file))
        AdoptExistingFile();
    else if (HasNoRoom(folder))
        FailToSave(ENOSPC);
    else
        LoadPart();
}

bool FileDownload::HasNoRoom(const QString& folder) const
{
    const qint64 missing = m_task.size - QFileInfo(m_partFile).size();
    const qint64 free = storage::FreeBytes(folder);
    return free >= 0 && free < missing;
}

/// The complete file is already at its destination if the client was killed before the task was saved, or if another
/// client saves to the same folder; it is reported now. Anything else at the destination belongs to somebody else.
void FileDownload::AdoptExistingFile()
{
    const QFileInfo info(m_task.file);
    m_part.setFileName(m_task.file);
    const bool mayBeOurs = info.isFile() && !info.isSymLink() && info.size() == m_task.size;
    if (mayBeOurs && m_part.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        HashOnDisk(&FileDownload::JudgeExistingFile);
    else
        End(DownloadOutcome::NameTaken);
}

void FileDownload::JudgeExistingFile()
{
    const bool isOurs = m_hashing->IsComplete() && m_hashing->Checksum() == m_task.checksum;
    if (isOurs)
        QFile::remove(m_partFile);
    End(isOurs ? DownloadOutcome::Complete : DownloadOutcome::NameTaken);
}

void FileDownload::LoadPart()
{
    if (!OpenPart()) {
        FailToSave(errno);
        return;
    }
    if (m_part.size() > m_task.size)
        m_part.resize(0);
    HashOnDisk(&FileDownload::Continue);
}

void FileDownload::HashOnDisk(void (FileDownload::*next)())
{
    // An earlier hashing may be emitting the signal that has led here.
    if (m_hashing)
        m_hashing.release()->deleteLater();
    m_hashing = std::make_unique<FileHashing>(&m_part);
    connect(m_hashing.get(), &FileHashing::Finished, this, next);
}

void FileDownload::Continue()
{
    if (!m_hashing->IsComplete()) {
        End(DownloadOutcome::Broken, {DownloadText::Interrupted, {m_task.name}});
        return;
    }
    m_hash = m_hashing->TakeHash();
    m_offset = m_hashing->Bytes();
    emit Progressed();
    if (m_offset == m_task.size)
        Finish();
    else
        Ask();
}

/// A symbolic link in place of the part file is not followed.
bool FileDownload::OpenPart()
{
    constexpr int ReadableByAll = 0666;
    const QByteArray path = QFile::encodeName(m_partFile);
    const int handle = ::open(path.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, ReadableByAll);
    return handle >= 0
        && m_part.open(handle, QIODevice::ReadWrite | QIODevice::Unbuffered, QFileDevice::AutoCloseHandle);
}

void FileDownload::StartOver()
{
    m_part.resize(0);
    m_part.seek(0);
    m_hash.Reset();
    m_offset = 0;
}

void FileDownload::Ask()
{
    m_request.headers = {{"Accept", "*/*"}, {"If-Match", '"' + m_task.checksum.toLatin1() + '"'}};
    if (m_offset > 0)
        m_request.headers.push_back({"Range", "bytes=" + QByteArray::number(m_offset) + '-'});
    m_accepted = false;
    m_reply = m_transport->Begin(m_request);
    if (!m_reply) {
        End(DownloadOutcome::Broken, DownloadText::NoFarm);
        return;
    }
    // A bounded buffer keeps the network from outrunning the disk.
    m_reply->setReadBufferSize(BlockBytes);
    connect(m_reply, &QNetworkReply::readyRead, this, &FileDownload::Receive);
    connect(m_reply, &QNetworkReply::finished, this, &FileDownload::Conclude);
    m_idle.start();
}

void FileDownload::Accept(int status)
{
    const qint64 start = status == HttpStatus::PartialContent
        ? RangeStart(m_reply->rawHeader("Content-Range"), m_task.size)
        : 0;
    const QVariant length = m_reply->header(QNetworkRequest::ContentLengthHeader);
    if (status == HttpStatus::Ok && m_offset > 0)
        StartOver();
    if (start != m_offset) {
        End(DownloadOutcome::Broken, {DownloadText::OtherPart, {m_task.name}});
    } else if (length.isValid() && length.toLongLong() != m_task.size - m_offset) {
        End(DownloadOutcome::Outdated, {DownloadText::SizeChanged, {m_task.name}});
    } else {
        m_accepted = true;
        m_transport->Report(m_request);
    }
}

void FileDownload::Refuse()
{
    const HttpResult result = HttpResult::Of(*m_reply, m_reply->read(BlockBytes));
    m_transport->Report(m_request, result.fault);
    if (result.status == HttpStatus::Unauthorized) {
        End(DownloadOutcome::SignedOut);
    } else if (result.status == HttpStatus::NotFound || result.status == HttpStatus::PreconditionFailed) {
        End(DownloadOutcome::Outdated, {DownloadText::Changed, {m_task.name}});
    } else if (result.status == HttpStatus::RangeNotSatisfiable && !m_startedOver) {
        m_startedOver = true;
        DropReply();
        StartOver();
        Ask();
    } else if (result.IsTransient() || result.IsFromIntermediary()
        || result.status == HttpStatus::RangeNotSatisfiable) {
        End(DownloadOutcome::Broken, {DownloadText::NotNow, {m_task.name, result.fault}},
            result.retryAfter * 1000);
    } else {
        End(DownloadOutcome::Failed, {DownloadText::Refused, {m_task.name, result.fault}});
    }
}

void FileDownload::Receive()
{
    const int status = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (status != HttpStatus::Ok && status != HttpStatus::PartialContent) {
        // The body explains the refusal. A body beyond the limit of the buffer would never arrive completely.
        if (m_reply->bytesAvailable() >= BlockBytes)
            Refuse();
        return;
    }
    if (!m_accepted)
        Accept(status);
    if (m_ended)
        return;
    m_idle.start();
    const bool isFirst = m_reply->bytesAvailable() > 0 && !m_reported.isValid();
    while (m_reply->bytesAvailable() > 0) {
        const QByteArray bytes = m_reply->read(BlockBytes);
        if (bytes.size() > m_task.size - m_offset) {
            StartOver();
            End(DownloadOutcome::Outdated, {DownloadText::TooMuch, {m_task.name}});
            return;
        }
        errno = ENOSPC; // a write that is cut short may not set it
        if (m_part.write(bytes) != bytes.size()) {
            FailToSave(errno);
            return;
        }
        m_hash.Add(bytes.constData(), bytes.size());
        m_offset += bytes.size();
        m_transfer.Count(bytes.size());
    }
    if (isFirst)
        emit Advanced();
    if (!m_reported.isValid() || m_reported.hasExpired(m_limits.progressInterval)) {
        m_reported.start();
        emit Progressed();
    }
}

void FileDownload::Conclude()
{
    const QPointer<QNetworkReply> reply = m_reply;
    Receive();
    if (m_ended || m_reply != reply)
        return;
    if (!m_accepted)
        Refuse();
    else if (m_offset == m_task.size)
        Finish();
    else
        HandleBreak();
}

void FileDownload::HandleBreak()
{
    if (m_reply->error() == QNetworkReply::NoError) {
        End(DownloadOutcome::Broken, {DownloadText::Interrupted, {m_task.name}});
        return;
    }
    const FarmFault fault = HttpResult::ConnectionFault(*m_reply);
    m_transport->Report(m_request, fault);
    End(DownloadOutcome::Broken,
        {DownloadText::InterruptedBecause, {m_task.name, TaskMessage::CauseOf(fault)}});
}

void FileDownload::Finish()
{
    if (m_hash.Result() != m_task.checksum) {
        QFile::remove(m_partFile);
        End(DownloadOutcome::Damaged, {DownloadText::Damaged, {m_task.name}});
        return;
    }
    m_part.close();
    // During the transfer, somebody else may have saved a file here.
    if (!m_task.fresh && DownloadPaths::IsOccupied(m_task.file)) {
        DropReply();
        AdoptExistingFile();
        return;
    }
    try {
        storage::RenameDurably(m_partFile, m_task.file);
        End(DownloadOutcome::Complete);
    } catch (const storage::DiskError& failure) {
        FailToSave(failure.Error());
    }
}

/// An error that affects all files may pass by itself; a fault of this file alone does not.
void FileDownload::FailToSave(int error)
{
    const TaskMessage message {
        DownloadText::NotSaved, {QDir::toNativeSeparators(m_task.file), qt_error_string(error)}};
    if (IsOfFile(error))
        End(DownloadOutcome::Failed, message);
    else if (IsOfDisk(error) || storage::FolderError(DownloadPaths::Root(m_task.file)) != 0)
        End(DownloadOutcome::DiskUnusable, message, 0, error);
    else
        End(DownloadOutcome::FolderUnusable, message, 0, error);
}

void FileDownload::End(DownloadOutcome::Kind kind, const TaskMessage& message, int retryAfter, int error)
{
    if (m_ended)
        return;
    m_ended = true;
    DropReply();
    m_part.close();
    emit Ended({kind, message, error, retryAfter});
}

void FileDownload::DropReply()
{
    m_idle.stop();
    Discard(m_reply, this);
}
