#include "host/rendercore/submit/farm_stages.h"

#include "host/farmclient/farm_numbers.h"
#include "host/rendercore/submit/job_body.h"
#include "host/rendercore/submit/submit_text.h"
#include "host/rendercore/submit/task_packages.h"

#include <QFile>
#include <QFileInfo>
#include <QHash>

#include <algorithm>

namespace {

constexpr int MostStalls = 5; // answers in a row without progress of a package

QJsonObject DataOf(const HttpResult& result)
{
    return result.json.value(QLatin1String("data")).toObject();
}

/// @return -1 when the value is not a number of bytes.
qint64 BytesOf(const QJsonValue& value)
{
    return static_cast<qint64>(std::clamp(value.toDouble(-1), -1.0, FarmNumbers::LargestSize));
}

QByteArray UploadTarget(const QByteArray& id)
{
    return "/uploads/" + id.toPercentEncoding();
}

bool IsStatus(const std::optional<HttpResult>& result, int status)
{
    return result && result->status == status;
}

} // namespace

StageOutcome FarmStages::Run(const StageRequest& request, const StageProgress& onProgress)
{
    m_request = &request;
    m_onProgress = &onProgress;
    m_outcome = {};
    m_outcome.work = request.task.work;
    m_farm.Begin(request.access, request.interrupted);
    switch (request.task.next) {
    case SubmitStage::Upload:
        UploadAll();
        break;
    case SubmitStage::Uncompress:
        UncompressAll();
        break;
    case SubmitStage::Submit:
        Submit();
        break;
    default:
        CopySame();
        break;
    }
    return m_outcome;
}

void FarmStages::CopySame()
{
    QStringList checksums;
    for (const PackedFile& file : qAsConst(m_outcome.work.files))
        checksums.append(file.checksum);
    checksums.removeDuplicates();
    QSet<QString> wanted(checksums.cbegin(), checksums.cend());
    for (int from = 0; from < checksums.size(); from += FarmNumbers::MostChecksums) {
        const QJsonArray some = QJsonArray::fromStringList(checksums.mid(from, FarmNumbers::MostChecksums));
        const auto result = m_farm.Post("/contents/known", {{QStringLiteral("checksums"), some}});
        if (!Check(result))
            return;
        const QJsonValue known = DataOf(*result).value(QLatin1String("known"));
        if (!CheckComplete(known.isArray()))
            return;
        const QJsonArray list = known.toArray();
        for (const QJsonValue& checksum : list)
            wanted.remove(checksum.toString());
        (*m_onProgress)(
            std::min(from + FarmNumbers::MostChecksums, checksums.size()) * 100 / checksums.size(), {});
    }
    Conclude(MarkWanted(wanted) ? SubmitStage::Upload : SubmitStage::Compress);
}

/// @return whether all wanted files are packed; a file may not be if its checksum was known before.
bool FarmStages::MarkWanted(QSet<QString> wanted)
{
    bool areAllPacked = true;
    for (PackedFile& file : m_outcome.work.files) {
        file.isWanted = wanted.remove(file.checksum);
        if (file.isWanted && !TaskPackages::Holds(m_request->folder, m_outcome.work, file)) {
            file.package = -1;
            areAllPacked = false;
        }
    }
    for (Package& package : m_outcome.work.packages)
        package.isSent = false;
    return areAllPacked;
}

void FarmStages::UploadAll()
{
    const QVector<int> wanted = m_outcome.work.WantedPackages();
    qint64 total = 0;
    for (const int index : wanted)
        total += m_outcome.work.packages.at(index).size;
    TransferMeter meter(total);
    ConnectionFeed::Transfer transfer(
        m_request->access.feed, ConnectionFeed::Up, QFileInfo(m_request->task.scene).completeBaseName());
    m_transfer = &transfer;
    for (const int index : wanted) {
        if (m_outcome.work.packages.at(index).isSent)
            meter.Skip(m_outcome.work.packages.at(index).size);
        else if (!SendPackage(index, meter))
            return;
        (*m_onProgress)(meter.Percent(), meter.Text());
    }
    Conclude(SubmitStage::Uncompress);
}

/// @return whether the stage may continue, as it does even after a refused package.
bool FarmStages::SendPackage(int index, TransferMeter& meter)
{
    Package& package = m_outcome.work.packages[index];
    const auto result = m_farm.Post(
        "/uploads", {{QStringLiteral("checksum"), package.checksum}, {QStringLiteral("size"), package.size}});
    if (!CheckPassing(result))
        return false;
    Upload upload;
    if (!ReadUpload(*result, index, upload))
        return true;
    package.upload = QString::fromUtf8(upload.id);
    meter.Skip(upload.offset);
    return SendChunks(index, upload, meter);
}

/// @return whether the stage may continue, as for SendPackage().
bool FarmStages::SendChunks(int index, Upload& upload, TransferMeter& meter)
{
    Package& package = m_outcome.work.packages[index];
    QFile content(TaskPackages::Path(m_request->folder, index));
    content.open(QIODevice::ReadOnly);
    for (int stalls = 0; upload.offset < package.size;) {
        const bool isReadable = content.isOpen() && content.seek(upload.offset);
        const QByteArray chunk = isReadable ? content.read(upload.chunkSize) : QByteArray();
        if (chunk.isEmpty()) {
            Refuse(index, SubmitText::PackageUnreadable);
            return true;
        }
        const auto result = SendChunk(upload, chunk, meter);
        // The farm deletes uploads that nobody has continued for days: this computer may have slept.
        if (IsStatus(result, HttpStatus::NotFound)) {
            Repeat(SubmitStage::Upload, SubmitText::Busy);
            return false;
        }
        if (!CheckPassing(result))
            return false;
        const qint64 before = upload.offset;
        if (!ReadUpload(*result, index, upload))
            return true;
        if (upload.offset > before) {
            meter.Add(upload.offset - before);
            m_transfer->CountTo(meter.Moved());
            m_outcome.advanced = true;
        } else if (++stalls == MostStalls) {
            Refuse(index, SubmitText::NotStored);
            return true;
        }
    }
    package.isSent = true;
    return true;
}

/// @return the farm's answer with its state of the upload, or a failure.
std::optional<HttpResult> FarmStages::SendChunk(
    const Upload& upload, const QByteArray& chunk, TransferMeter& meter)
{
    HttpRequest request;
    request.verb = "PUT";
    request.target = UploadTarget(upload.id) + "?offset=" + QByteArray::number(upload.offset);
    request.contentType = "application/octet-stream";
    request.attemptTime = m_limits.chunkTime;
    request.body = chunk;
    const auto result = m_farm.Send(request, [this, &meter](qint64 bytes) {
        meter.SetInFlight(bytes);
        m_transfer->CountTo(meter.Moved());
        (*m_onProgress)(meter.Percent(), meter.Text());
    });
    if (!IsStatus(result, HttpStatus::Conflict))
        return result;
    return AskForUpload(upload.id); // the farm's offset differs from this client's
}

std::optional<HttpResult> FarmStages::AskForUpload(const QByteArray& id)
{
    HttpRequest question;
    question.verb = "GET";
    question.target = UploadTarget(id);
    return m_farm.Send(question);
}

void FarmStages::UncompressAll()
{
    const QVector<int> wanted = m_outcome.work.WantedPackages();
    int done = 0;
    for (const int index : wanted) {
        if (!Uncompress(index))
            return;
        (*m_onProgress)(++done * 100 / wanted.size(), {});
    }
    Conclude(SubmitStage::Submit);
}

/// @return whether the farm has the whole package. It unpacks one package of an account at a time, for minutes.
bool FarmStages::HasAll(const Package& package)
{
    const auto result = AskForUpload(package.upload.toUtf8());
    return IsStatus(result, HttpStatus::Ok)
        && BytesOf(DataOf(*result).value(QLatin1String("offset"))) == package.size;
}

bool FarmStages::Uncompress(int index)
{
    Package& package = m_outcome.work.packages[index];
    const auto result
        = m_farm.Post(UploadTarget(package.upload.toUtf8()) + "/unpack", {}, m_limits.unpackTime);
    if (IsStatus(result, HttpStatus::Conflict) && HasAll(package)) {
        Repeat(SubmitStage::Uncompress, SubmitText::Busy);
        m_outcome.obstacle = StageOutcome::Obstacle::Farm;
        return false;
    }
    if (IsStatus(result, HttpStatus::NotFound) || IsStatus(result, HttpStatus::Conflict)) {
        package.isSent = false;
        Repeat(SubmitStage::Upload, SubmitText::Busy);
        return false;
    }
    if (!CheckPassing(result))
        return false;
    if (result->status != HttpStatus::Ok) {
        Refuse(index, result->fault);
        return true;
    }
    const QJsonValue files = DataOf(*result).value(QLatin1String("files"));
    if (!CheckComplete(files.isArray()))
        return false;
    TakeUnpacked(index, files.toArray());
    return true;
}

/// Compares the files that the farm has unpacked with the packed ones.
void FarmStages::TakeUnpacked(int index, const QJsonArray& unpacked)
{
    QHash<QString, QString> checksums; // by path
    for (const QJsonValue& file : unpacked)
        checksums.insert(file[QLatin1String("path")].toString(), file[QLatin1String("checksum")].toString());
    for (PackedFile& file : m_outcome.work.files) {
        if (file.isWanted && file.package == index && checksums.value(file.path) == file.checksum) {
            file.isWanted = false;
            m_outcome.advanced = true;
        }
    }
    Refuse(index, SubmitText::ArrivedDamaged);
}

void FarmStages::Submit()
{
    const auto result = m_farm.Post("/jobs", JobBody(m_request->task));
    if (IsStatus(result, HttpStatus::Conflict)) {
        Repeat(SubmitStage::CopySame, SubmitText::Busy);
        return;
    }
    if (!Check(result))
        return;
    m_outcome.job = DataOf(*result).value(QLatin1String("job_increasement")).toString();
    if (!CheckComplete(!m_outcome.job.isEmpty()))
        return;
    Conclude(SubmitStage::Submit);
}

/// Reads the farm's state of a package, which is refused when the farm refuses it or the answer is invalid.
bool FarmStages::ReadUpload(const HttpResult& result, int index, Upload& upload)
{
    const qint64 size = m_outcome.work.packages.at(index).size;
    const QJsonObject data = DataOf(result);
    upload.id = data.value(QLatin1String("id")).toString().toUtf8();
    upload.offset = BytesOf(data.value(QLatin1String("offset")));
    upload.chunkSize = std::min(BytesOf(data.value(QLatin1String("chunkSize"))), FarmNumbers::LargestChunk);
    if (data.value(QLatin1String("unpacked")).toBool())
        upload.offset = size;
    if (result.status != HttpStatus::Ok)
        Refuse(index, result.fault);
    else if (upload.id.isEmpty() || upload.offset < 0 || upload.offset > size || upload.chunkSize < 1)
        Refuse(index, SubmitText::AnswerUnreadable);
    else
        return true;
    return false;
}

/// @return whether the request succeeded; otherwise the outcome holds the reason.
bool FarmStages::Check(const std::optional<HttpResult>& result)
{
    if (!CheckPassing(result))
        return false;
    if (result->status == HttpStatus::Ok)
        return true;
    m_outcome.kind = StageOutcome::Kind::Failed;
    m_outcome.error = SubmitError::FarmRefused;
    m_outcome.message = result->fault;
    return false;
}

/// @return whether the answer has all required members; otherwise the stage has failed.
bool FarmStages::CheckComplete(bool isComplete)
{
    if (isComplete)
        return true;
    m_outcome.kind = StageOutcome::Kind::Failed;
    m_outcome.error = SubmitError::FarmRefused;
    m_outcome.message = SubmitText::AnswerIncomplete;
    return false;
}

/// @return whether the answer is final; otherwise the outcome says what to wait for.
bool FarmStages::CheckPassing(const std::optional<HttpResult>& result)
{
    if (!result)
        return false;
    const bool isFull = result->IsDiskFull();
    const bool isSignedOut = result->status == HttpStatus::Unauthorized;
    const bool isFromIntermediary = result->IsFromIntermediary();
    if (!isSignedOut && !isFromIntermediary && !result->IsTransient())
        return true;
    const bool isAway = result->status <= 0;
    const char* const text
        = isAway ? SubmitText::Unreachable : (isFull ? SubmitText::FarmFull : SubmitText::Busy);
    Repeat(m_request->task.next, isSignedOut ? SubmitText::SessionEnded : text);
    if (result->status == FarmFault::Untrusted || isFromIntermediary)
        m_outcome.message = result->fault;
    m_outcome.retryAfter = result->retryAfter;
    if (isSignedOut)
        m_outcome.obstacle = StageOutcome::Obstacle::Session;
    else if (isAway || isFull || isFromIntermediary || result->status == HttpStatus::TooManyRequests)
        m_outcome.obstacle = StageOutcome::Obstacle::Farm;
    return false;
}

/// Adds the wanted files of a package to the refused ones.
void FarmStages::Refuse(int index, const TaskMessage& reason)
{
    for (const PackedFile& file : qAsConst(m_outcome.work.files)) {
        if (!file.isWanted || file.package != index)
            continue;
        if (m_outcome.refused.isEmpty())
            m_outcome.message = reason;
        m_outcome.refused.append(file.source);
    }
}

void FarmStages::Conclude(SubmitStage next)
{
    m_outcome.next = next;
    m_outcome.kind = StageOutcome::Kind::Done;
    if (m_outcome.refused.isEmpty())
        return;
    m_outcome.kind = StageOutcome::Kind::Failed;
    m_outcome.error = SubmitError::UploadRefused;
}

void FarmStages::Repeat(SubmitStage next, const TaskMessage& message)
{
    m_outcome.kind = StageOutcome::Kind::TryAgain;
    m_outcome.next = next;
    m_outcome.message = message;
}
