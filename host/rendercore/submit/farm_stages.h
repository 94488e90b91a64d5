#pragma once

#include "host/rendercore/submit/farm_link.h"
#include "host/rendercore/submit/stage_outcome.h"
#include "host/rendercore/submit/transfer_meter.h"

/// The stages that the farm takes part in. They belong to the thread that made them.
class FarmStages
{
public:
    /// Does the order's stage, one from CopySame on.
    StageOutcome Run(const StageRequest& request, const StageProgress& onProgress);

    /// Ends the request that is under way when the order's flag is set.
    void Interrupt() { m_farm.Interrupt(); }

private:
    /// How far the farm is with a package.
    struct Upload
    {
        QByteArray id;
        qint64 offset = 0;
        qint64 chunkSize = 0;
    };

    void CopySame();
    void UploadAll();
    bool SendPackage(PackedFile& file, const QString& package, TransferMeter& meter, qint64& moved);
    bool SendChunks(
        PackedFile& file, const QString& package, Upload& upload, TransferMeter& meter, qint64& moved);
    void UncompressAll();
    bool Uncompress(PackedFile& file);
    void Submit();

    bool ReadUpload(const HttpResult& result, const PackedFile& file, Upload& upload);
    bool Check(const std::optional<HttpResult>& result);
    bool CheckPassing(const std::optional<HttpResult>& result);
    void Refuse(const PackedFile& file, const QString& reason);
    void Conclude(SubmitStage next);
    void Repeat(SubmitStage next, const QString& message);

    FarmLink m_farm;
    const StageRequest* m_request = nullptr; // while it runs
    const StageProgress* m_onProgress = nullptr;
    StageOutcome m_outcome;
};
