#include "host/services/render_core_service.h"

#include "host/farmclient/http_transport.h"
#include "host/rendercore/submit/scene_analysis.h"
#include "host/rendercore/submit/submit_rules.h"
#include "host/settings/download_folder.h"
#include "host/settings/keep_days.h"
#include "host/settings/setting_keys.h"
#include "vtr_settingsinterface.h"

#include <algorithm>

RenderCoreService::RenderCoreService(const QString& folder, VTSettingsInterface* settings, QObject* parent)
    : ServiceBase<VTRenderCoreInterface>(parent)
    , m_settings(settings)
    , m_submissions(folder)
    , m_downloads(folder)
{
    connect(&m_submissions, &SubmitQueue::ListChanged, this, &VTRenderCoreInterface::SubmitListChanged);
    connect(&m_submissions, &SubmitQueue::Notice, this, &RenderCoreService::Notice);
    connect(&m_submissions, &SubmitQueue::SceneRefused, this, &RenderCoreService::SceneRefused);
    connect(&m_submissions, &SubmitQueue::UploadFailed, this, &RenderCoreService::HandleUploadFailure);
    connect(&m_submissions, &SubmitQueue::TexturesLacking, this, &VTRenderCoreInterface::lackedTexture);
    m_submissions.SetArgumentsCheck(
        [this] { return m_settings->Value(SettingKeys::OfAccount(m_userName, "setargument"), 0).toBool(); });
    connect(&m_downloads, &DownloadQueue::ListChanged, this, &VTRenderCoreInterface::DownloadListChanged);
    connect(&m_downloads, &DownloadQueue::FilesFinished, &m_finishNotice, &FinishNotice::Add);
    connect(&m_finishNotice, &FinishNotice::Due, this, &VTRenderCoreInterface::DownloadFinish);
    connect(&m_downloads, &DownloadQueue::Notice, this, &RenderCoreService::Notice);
    // The folder for downloads and the age of finished ones are settings.
    connect(settings, &VTSettingsInterface::SettingsUpdated, this, &RenderCoreService::UpdateAccess);
}

void RenderCoreService::SetServerUrl(const QUrl& url, bool isOnThisComputer)
{
    m_server = url;
    m_isServerOnThisComputer = isOnThisComputer;
    UpdateAccess();
}

void RenderCoreService::SetProxyLogin(const ProxyLogin& login)
{
    m_proxy = login;
    UpdateAccess();
}

void RenderCoreService::BeginSession(const QString& userName, const QString& token)
{
    m_userName = userName;
    m_token = token;
    m_automaticOrders.Clear();
    m_finishNotice.Clear();
    UpdateAccess();
}

void RenderCoreService::EndSession()
{
    BeginSession({}, {});
}

bool RenderCoreService::eventFilter(QObject* watched, QEvent* event)
{
    return m_formFilter && m_formFilter->eventFilter(watched, event);
}

void RenderCoreService::UpdateAccess()
{
    FarmAccess access;
    access.apiRoot = FarmApiRoot(m_server);
    access.token = m_token;
    access.isOnThisComputer = m_isServerOnThisComputer;
    access.proxy = m_proxy;
    access.feed = m_feed;
    if (!m_userName.isEmpty()) {
        access.owner = m_serverName + QLatin1Char('/') + m_userName;
        access.folder = DownloadFolder::Of(m_settings, m_userName);
        m_downloads.SetKeepDays(KeepDays::Of(m_settings, m_userName));
    }
    m_submissions.SetAccess(access);
    m_downloads.SetAccess(access);
    emit AccessChanged(access);
}

void RenderCoreService::RemoveSubmitTasks(const QStringList& ids, bool byUser)
{
    if (byUser)
        m_submissions.Remove(ids);
    else
        m_submissions.EndSession();
}

void RenderCoreService::RemoveDownloadTasks(const QStringList& ids)
{
    m_downloads.Remove(ids);
}

void RenderCoreService::ClearFinishedDownloads()
{
    m_downloads.ClearFinished();
}

void RenderCoreService::Retranslate()
{
    m_downloads.Retranslate();
}

void RenderCoreService::RetryFailedDownloads()
{
    m_downloads.RetryFailed();
}

void RenderCoreService::StopDownloadTasks(const QStringList& ids)
{
    m_downloads.Stop(ids);
}

void RenderCoreService::ResumeDownloadTasks(const QStringList& ids)
{
    m_downloads.Resume(ids);
}

void RenderCoreService::StopSubmitTasks()
{
    m_submissions.StopAll();
}

void RenderCoreService::ResumeSubmitTasks()
{
    m_submissions.ResumeAll();
}

void RenderCoreService::HandleUploadFailure(const QString& id, const QStringList& files)
{
    if (SubmitRules::LacksSpace(Task(id)))
        emit SpaceLacking(id);
    else
        emit failFile(id, files);
}

QStringList RenderCoreService::TasksWithoutSpace() const
{
    QStringList ids = m_submissions.Ids();
    ids.erase(std::remove_if(ids.begin(), ids.end(),
                  [this](const QString& id) {
                      const SubmitTask& task = Task(id);
                      return SubmitRules::QuestionOf(task) != SubmitRules::Question::RetryUpload
                          || !SubmitRules::LacksSpace(task);
                  }),
        ids.end());
    return ids;
}

/// @return an empty task for an unknown id.
const SubmitTask& RenderCoreService::Task(const QString& id) const
{
    static const SubmitTask none;
    const SubmitTask* task = m_submissions.Task(id);
    return task ? *task : none;
}

QStringList RenderCoreService::SceneSuffixes()
{
    return ::SceneSuffixes();
}

QString RenderCoreService::HaltText(const QString& id) const
{
    return SubmitRules::HaltText(Task(id));
}

QVariantMap* RenderCoreService::GetDownloadTasks()
{
    return m_downloads.Tasks();
}

QString RenderCoreService::GetTaskSceneFile(const QString& id)
{
    return Task(id).scene;
}

QString RenderCoreService::GetTaskStartTime(const QString& id)
{
    return Task(id).started;
}

QString RenderCoreService::GetTaskMessage(const QString& id)
{
    return Task(id).message.Text();
}

int RenderCoreService::GetTaskStage(const QString& id)
{
    return static_cast<int>(Task(id).stage);
}

int RenderCoreService::GetTaskProgress(const QString& id)
{
    return Task(id).progress;
}

QString RenderCoreService::GetTaskUploadText(const QString& id)
{
    return Task(id).uploadText.Text();
}

int RenderCoreService::GetTaskErrorCode(const QString& id)
{
    return static_cast<int>(Task(id).error);
}

QStringList RenderCoreService::GetSubmitTaskIds()
{
    return m_submissions.Ids();
}

int RenderCoreService::GetSubmitTaskCount()
{
    return m_submissions.Ids().size();
}

QVariantList RenderCoreService::GetTaskArguments(const QString& id)
{
    return Task(id).arguments;
}

void RenderCoreService::UploadRetryAnswer(const QString& id, bool retry)
{
    m_submissions.AnswerUploadFailure(id, retry);
}

void RenderCoreService::LackTextureAnswer(const QString& id, bool goOn)
{
    m_submissions.AnswerMissingTextures(id, goOn);
}

void RenderCoreService::ContinueSubmit(const QString& id)
{
    m_submissions.Continue(id);
}

int RenderCoreService::SubmitScene(const QString& sceneFile)
{
    return SubmitScene(sceneFile, 0);
}

int RenderCoreService::SubmitScene(const QString& sceneFile, int priority)
{
    switch (m_submissions.Submit(sceneFile, priority)) {
    case SubmitQueue::Answer::Accepted:
        return 0;
    case SubmitQueue::Answer::Known:
        return 1;
    default:
        return -1;
    }
}

void RenderCoreService::RedownloadTasks(const QStringList& ids)
{
    m_downloads.Redownload(ids);
}

void RenderCoreService::SetArgument(QString id, QVariantList arguments)
{
    m_submissions.SetArguments(id, arguments);
}

void RenderCoreService::TriggerJobIdType(QVariantMap orders)
{
    m_automaticOrders.Remember(orders);
    m_downloads.Order(orders);
}

void RenderCoreService::HandleJobList(int code, const QVariantMap& answer)
{
    if (code != HttpStatus::Ok || m_userName.isEmpty())
        return;
    const QVariantMap data = answer.value(QStringLiteral("data")).toMap();
    const QVariantMap orders = m_automaticOrders.Repeat(data.value(QStringLiteral("list")).toList());
    if (m_settings->Value(SettingKeys::OfAccount(m_userName, "autodownload"), 0).toBool())
        m_downloads.Order(orders);
}
