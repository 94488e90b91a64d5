#pragma once

#include "service_base.h"
#include "vtr_rendercoreinterface.h"

/// The render core of a client that has neither submissions nor downloads: every list is empty, every id unknown.
class RenderCoreService : public ServiceBase<VTRenderCoreInterface>
{
    Q_OBJECT
    Q_INTERFACES(VTRenderCoreInterface)

public:
    using ServiceBase::ServiceBase;

    void RemoveSubmitTasks(const QStringList&, bool) override { }
    void RemoveDownloadTasks(const QStringList&) override { }
    void StopDownloadTasks(const QStringList&) override { }
    void ResumeDownloadTasks(const QStringList&) override { }
    void StopSubmitTasks() override { }
    void ResumeSubmitTasks() override { }
    QVariantMap* GetDownloadTasks() override { return &m_downloads; }
    QString GetTaskSceneFile(const QString&) override { return {}; }
    QString GetTaskStartTime(const QString&) override { return {}; }
    QString GetTaskMessage(const QString&) override { return {}; }
    int GetTaskStage(const QString&) override { return 0; }
    int GetTaskProgress(const QString&) override { return 0; }
    QString GetTaskUploadText(const QString&) override { return {}; }
    int GetTaskErrorCode(const QString&) override { return 0; }
    QStringList GetSubmitTaskIds() override { return {}; }
    int GetSubmitTaskCount() override { return 0; }
    QVariantList GetTaskArguments(const QString&) override { return {}; }
    void UploadRetryAnswer(const QString&, bool) override { }
    void LackTextureAnswer(const QString&, bool) override { }
    void ContinueSubmit(const QString&) override { }
    int SubmitScene(const QString&) override { return -1; }
    void RedownloadTasks(const QStringList&) override { }

public slots:
    void SetArgument(QString, QVariantList) override { }
    void TriggerJobIdType(QVariantMap) override { }

private:
    QVariantMap m_downloads;
};
