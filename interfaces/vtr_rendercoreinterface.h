#pragma once

#include "vtr_baseinterface.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

/// The engine of local submissions (analysis, upload) and of downloads.
///
/// Everything the window sees of it happens on the GUI thread. Task ids are the engine's own strings; an unknown id
/// reads as empty, 0 or an empty list.
class VTRenderCoreInterface : public QObject, public VTBaseInterface
{
    Q_OBJECT
    Q_INTERFACES(VTBaseInterface)

public:
    using QObject::QObject;

    /// @param bByUser true when the user deletes tasks, false with every listed task at sign-out and quit.
    virtual void RemoveSubmitTasks(const QStringList& lstTaskId, bool bByUser) = 0;
    virtual void RemoveDownloadTasks(const QStringList& lstTaskId) = 0;
    virtual void StopDownloadTasks(const QStringList& lstTaskId) = 0;
    virtual void ResumeDownloadTasks(const QStringList& lstTaskId) = 0;
    virtual void StopSubmitTasks() = 0;
    virtual void ResumeSubmitTasks() = 0;

    /// The live download tasks by id, each a map of "destFile", "srcFile", "jobId", "status" (0 waiting,
    /// 1 downloading, 2 finished, 3 failed, 4 stopped), "progress" (percent) and "msg". Valid as long as the engine.
    virtual QVariantMap* GetDownloadTasks() = 0;

    virtual QString GetTaskSceneFile(const QString& strTaskId) = 0;
    virtual QString GetTaskStartTime(const QString& strTaskId) = 0;
    virtual QString GetTaskMessage(const QString& strTaskId) = 0;

    /// 0 wait, 1 analyze, 2 compress, 3 checksum, 4 copysame, 5 upload, 6 uncompress, 7 submit.
    virtual int GetTaskStage(const QString& strTaskId) = 0;

    /// Percent of the present stage, 0 to 100.
    virtual int GetTaskProgress(const QString& strTaskId) = 0;
    virtual QString GetTaskUploadText(const QString& strTaskId) = 0;

    /// 0 none, 9 waiting for the user's go-ahead, any other a failure.
    virtual int GetTaskErrorCode(const QString& strTaskId) = 0;

    /// In display order.
    virtual QStringList GetSubmitTaskIds() = 0;
    virtual int GetSubmitTaskCount() = 0;

    /// One map per frame-range group: "startFrame_%1", "endFrame_%1", "width", "height", "prerender".
    virtual QVariantList GetTaskArguments(const QString& strTaskId) = 0;

    virtual void UploadRetryAnswer(const QString& strJobId, bool bRetry) = 0;
    virtual void LackTextureAnswer(const QString& strJobId, bool bContinue) = 0;
    virtual void ContinueSubmit(const QString& strTaskId) = 0;

    /// @return 0 when the scene was taken.
    virtual int SubmitScene(const QString& strSceneFile) = 0;
    virtual void RedownloadTasks(const QStringList& lstTaskId) = 0;

public slots:
    virtual void SetArgument(QString strId, QVariantList lstData) = 0;

    /// Download orders: job id to a map of "jobType", "subDir" and "manual" (1 asked for by the user, 0 automatic).
    virtual void TriggerJobIdType(QVariantMap mapJobIdType) = 0;

signals:
    void SubmitListChanged();
    void DownloadListChanged();
    void failFile(QString strJobId, QStringList lstFailFile);
    void lackedTexture(QString strJobId, QStringList lstLackedTexture);
    void DownloadFinish(QString strFile);
};

Q_DECLARE_INTERFACE(VTRenderCoreInterface, "com.vtr.rendercore")
