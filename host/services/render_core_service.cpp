#include "render_core_service.h"

#include "download_folder.h"
#include "http_transport.h"
#include "vtr_settingsinterface.h"

RenderCoreService::RenderCoreService(const QString& folder, VTSettingsInterface* settings, QObject* parent)
    : ServiceBase<VTRenderCoreInterface>(parent)
    , m_settings(settings)
    , m_submissions(folder)
    , m_downloads(folder)
{
    connect(&m_submissions, &SubmitQueue::ListChanged, this, &VTRenderCoreInterface::SubmitListChanged);
    connect(&m_submissions, &SubmitQueue::UploadFailed, this, &VTRenderCoreInterface::failFile);
    connect(&m_submissions, &SubmitQueue::TexturesLacking, this, &VTRenderCoreInterface::lackedTexture);
    connect(&m_downloads, &DownloadQueue::ListChanged, this, &VTRenderCoreInterface::DownloadListChanged);
    connect(&m_downloads, &DownloadQueue::FileFinished, this, &VTRenderCoreInterface::DownloadFinish);
    // The folder for downloads is one of them.
    connect(settings, &VTSettingsInterface::SettingsUpdated, this, &RenderCoreService::PassAccess);
}

void RenderCoreService::SetServerUrl(const QUrl& url)
{
    m_server = url;
    PassAccess();
}

void RenderCoreService::BeginSession(const QString& userName, const QString& token)
{
    m_userName = userName;
    m_token = token;
    PassAccess();
}

void RenderCoreService::EndSession()
{
    BeginSession({}, {});
}

void RenderCoreService::PassAccess()
{
    FarmAccess access;
    access.apiRoot = FarmApiRoot(m_server);
    access.token = m_token;
    if (!m_userName.isEmpty()) {
        // The address of an embedded farm changes with each of its starts; its configured name does not.
        access.owner = m_settings->Value(QStringLiteral("vtr.web/currentserver"), {}).toString()
            + QLatin1Char('/') + m_userName;
        access.folder = DownloadFolder::Of(m_settings, m_userName);
    }
    m_submissions.SetAccess(access);
    m_downloads.SetAccess(access);
}

void RenderCoreService::RemoveSubmitTasks(const QStringList&, bool) { }

void RenderCoreService::RemoveDownloadTasks(const QStringList& ids)
{
    m_downloads.Remove(ids);
}

void RenderCoreService::StopDownloadTasks(const QStringList& ids)
{
    m_downloads.Stop(ids);
}

void RenderCoreService::ResumeDownloadTasks(const QStringList& ids)
{
    m_downloads.Resume(ids);
}

void RenderCoreService::StopSubmitTasks() { }
void RenderCoreService::ResumeSubmitTasks() { }

QVariantMap* RenderCoreService::GetDownloadTasks()
{
    return m_downloads.Tasks();
}

QString RenderCoreService::GetTaskSceneFile(const QString&)
{
    return {};
}

QString RenderCoreService::GetTaskStartTime(const QString&)
{
    return {};
}

QString RenderCoreService::GetTaskMessage(const QString&)
{
    return {};
}

int RenderCoreService::GetTaskStage(const QString&)
{
    return 0;
}

int RenderCoreService::GetTaskProgress(const QString&)
{
    return 0;
}

QString RenderCoreService::GetTaskUploadText(const QString&)
{
    return {};
}

int RenderCoreService::GetTaskErrorCode(const QString&)
{
    return 0;
}

QStringList RenderCoreService::GetSubmitTaskIds()
{
    return m_submissions.Ids();
}

int RenderCoreService::GetSubmitTaskCount()
{
    return m_submissions.Ids().size();
}

QVariantList RenderCoreService::GetTaskArguments(const QString&)
{
    return {};
}

void RenderCoreService::UploadRetryAnswer(const QString&, bool) { }
void RenderCoreService::LackTextureAnswer(const QString&, bool) { }
void RenderCoreService::ContinueSubmit(const QString&) { }

int RenderCoreService::SubmitScene(const QString&)
{
    return -1;
}

void RenderCoreService::RedownloadTasks(const QStringList& ids)
{
    m_downloads.Redownload(ids);
}

void RenderCoreService::SetArgument(QString, QVariantList) { }
void RenderCoreService::TriggerJobIdType(QVariantMap orders)
{
    m_downloads.Order(orders);
}
