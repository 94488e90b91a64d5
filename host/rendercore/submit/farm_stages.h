#pragma once

#include "host/farmclient/connection_feed.h"
#include "host/farmclient/farm_link.h"
#include "host/rendercore/submit/stage_outcome.h"
#include "host/rendercore/submit/transfer_meter.h"

#include <QJsonArray>
#include <QSet>

/// How long a request to the farm may make no progress before it has failed, in milliseconds.
struct SubmitLimits
{
    int answerTime = 30 * 1000;
    int chunkTime = 120 * 1000;
    /// The farm goes on unpacking when nobody waits, so a connection that died silently costs no more than this.
    int unpackTime = 5 * 60 * 1000;
};

/// The stages that need the farm. Belongs to the thread that creates it.
class FarmStages
{
public:
    explicit FarmStages(const SubmitLimits& limits)
        : m_limits(limits)
        , m_farm(limits.answerTime)
    {
    }

    /// Runs the stage of the request, one for which NeedsFarm() holds.
    StageOutcome Run(const StageRequest& request, const StageProgress& onProgress);

    /// Ends the current HTTP request if the flag of the stage is set.
    void Interrupt() { m_farm.Interrupt(); }

private:
    /// The farm's state of a package.
    struct Upload
    {
        QByteArray id;
        qint64 offset = 0;
        qint64 chunkSize = 0;
    };

    void CopySame();
    bool MarkWanted(QSet<QString> wanted);
    void UploadAll();
    bool SendPackage(int index, TransferMeter& meter);
    bool SendChunks(int index, Upload& upload, TransferMeter& meter);
    std::optional<HttpResult> SendChunk(const Upload& upload, const QByteArray& chunk, TransferMeter& meter);
    std::optional<HttpResult> AskForUpload(const QByteArray& id);
    void UncompressAll();
    bool HasAll(const Package& package);
    bool Uncompress(int index);
    void TakeUnpacked(int index, const QJsonArray& unpacked);
    void Submit();

    bool ReadUpload(const HttpResult& result, int index, Upload& upload);
    bool Check(const std::optional<HttpResult>& result);
    bool CheckPassing(const std::optional<HttpResult>& result);
    bool CheckComplete(bool isComplete);
    void Refuse(int index, const TaskMessage& reason);
    void Conclude(SubmitStage next);
    void Repeat(SubmitStage next, const TaskMessage& message);

    SubmitLimits m_limits;
    FarmLink m_farm;
    const StageRequest* m_request = nullptr; // set while a stage runs, like m_onProgress
    const StageProgress* m_onProgress = nullptr;
    ConnectionFeed::Transfer* m_transfer = nullptr; // set while packages are sent
    StageOutcome m_outcome;
};
