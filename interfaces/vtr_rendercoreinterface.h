#pragma once

#include "vtr_baseinterface.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

/// The engine of local submissions (analysis, upload) and of downloads.
///
/// All calls and signals run on the GUI thread. Task ids are strings that the engine chooses; for an unknown id a
/// getter returns an empty text, 0 or an empty list.
class VTRenderCoreInterface : public QObject, public VTBaseInterface
{
    Q_OBJECT
    Q_INTERFACES(VTBaseInterface)

public:
    using QObject::QObject;

    /// @param bByUser true when the user deletes tasks; false at sign-out and quit, with all listed tasks.
    virtual void RemoveSubmitTasks(const QStringList& lstTaskId, bool bByUser) = 0;
    virtual void RemoveDownloadTasks(const QStringList& lstTaskId) = 0;
    // contract: the window does not call these two
    virtual void StopDownloadTasks(const QStringList& lstTaskId) = 0;
    virtual void ResumeDownloadTasks(const QStringList& lstTaskId) = 0;

    virtual void StopSubmitTasks() = 0;
    virtual void ResumeSubmitTasks() = 0; // contract: the window does not call it

    /// The live download tasks by id, each a map of "destFile", "srcFile", "jobId", "status" (0 waiting,
    /// 1 downloading, 2 finished, 3 failed, 4 stopped), "progress" (percent) and "msg". The engine owns the map.
    virtual QVariantMap* GetDownloadTasks() = 0;

    virtual QString GetTaskSceneFile(const QString& strTaskId) = 0;
    virtual QString GetTaskStartTime(const QString& strTaskId) = 0;
    virtual QString GetTaskMessage(const QString& strTaskId) = 0;

    /// The current stage: 0 wait, 1 analyze, 2 compress, 3 checksum, 4 copysame, 5 upload, 6 uncompress, 7 submit.
    virtual int GetTaskStage(const QString& strTaskId) = 0;

    /// Progress of the current stage, 0 to 100 percent.
    virtual int GetTaskProgress(const QString& strTaskId) = 0;

    /// Text about the running upload, for example its speed.
    virtual QString GetTaskUploadText(const QString& strTaskId) = 0;

    /// 0 no error, 9 the task waits for the user's consent to go on, any other code a failure.
    virtual int GetTaskErrorCode(const QString& strTaskId) = 0;

    /// Ids of all submissions, in display order.
    virtual QStringList GetSubmitTaskIds() = 0;
    virtual int GetSubmitTaskCount() = 0;

    /// One map per frame-range group: "startFrame_%1", "endFrame_%1", "width", "height", "prerender".
    virtual QVariantList GetTaskArguments(const QString& strTaskId) = 0;

    // Answers to the signals failFile and lackedTexture.
    virtual void UploadRetryAnswer(const QString& strJobId, bool bRetry) = 0;
    virtual void LackTextureAnswer(const QString& strJobId, bool bContinue) = 0;

    /// Goes on with a task that waits for the user.
    virtual void ContinueSubmit(const QString& strTaskId) = 0;

    /// Starts the submission of a scene. @return 0 when the scene was accepted, 1 when a task of this scene is under way
    /// already, -1 when it cannot be submitted.
    virtual int SubmitScene(const QString& strSceneFile) = 0;
    virtual void RedownloadTasks(const QStringList& lstTaskId) = 0;

public slots:
    /// Replaces a task's render arguments; one map per group, as `GetTaskArguments` returns them.
    virtual void SetArgument(QString strId, QVariantList lstData) = 0;

    /// Orders downloads.
    /// @param mapJobIdType job id to a map of "jobType", "subDir" (folder for the job's files) and "manual" (1 ordered
    /// by the user, 0 automatic).
    virtual void TriggerJobIdType(QVariantMap mapJobIdType) = 0;

signals:
    void SubmitListChanged();
    void DownloadListChanged();

    /// Files of a task could not be uploaded; `UploadRetryAnswer` is expected.
    void failFile(QString strJobId, QStringList lstFailFile);

    /// Files that a task's scene uses are missing; `LackTextureAnswer` is expected.
    void lackedTexture(QString strJobId, QStringList lstLackedTexture);

    /// @param strFile path of the downloaded file.
    void DownloadFinish(QString strFile);
};

Q_DECLARE_INTERFACE(VTRenderCoreInterface, "com.vtr.rendercore")
