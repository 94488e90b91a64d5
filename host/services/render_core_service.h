#pragma once

#include "host/rendercore/download/automatic_orders.h"
#include "host/rendercore/download/download_queue.h"
#include "host/rendercore/download/finish_notice.h"
#include "host/rendercore/submit/submit_queue.h"
#include "host/services/service_base.h"
#include "vtr_rendercoreinterface.h"

#include <QPointer>

class VTSettingsInterface;

/// The engine of submissions and downloads, as the main window sees it. Every operation is forwarded to one of two queues.
class RenderCoreService : public ServiceBase<VTRenderCoreInterface>
{
    Q_OBJECT
    Q_INTERFACES(VTRenderCoreInterface)

public:
    /// @param folder holds the queues' databases and packages.
    /// @param settings must outlive this service.
    RenderCoreService(const QString& folder, VTSettingsInterface* settings, QObject* parent = nullptr);

    /// @param name identifies the server across starts of the client. Set it before a session begins.
    void SetServerName(const QString& name) { m_serverName = name; }

    /// @param url root of the server; empty while there is none.
    /// @param isOnThisComputer whether the server is the farm that this client has started.
    void SetServerUrl(const QUrl& url, bool isOnThisComputer = false);

    void SetProxyLogin(const ProxyLogin& login);

    /// @param feed is told of all exchanges; it must outlive this service. Set it before a session begins.
    void SetFeed(ConnectionFeed* feed) { m_feed = feed; }

    /// Shows the account's tasks and lets them continue.
    void BeginSession(const QString& userName, const QString& token);
    void EndSession();

    /// Sets the filter for events of the main form, on which the window installs this service as an event filter.
    void SetFormFilter(QObject* filter) { m_formFilter = filter; }
    bool eventFilter(QObject* watched, QEvent* event) override;

    /// The suffixes of the scenes that can be submitted, in lower case.
    static QStringList SceneSuffixes();

    /// @param priority of the job. @return like the window's SubmitScene().
    int SubmitScene(const QString& sceneFile, int priority);

    /// The reason, in a few words, why a local task stands still; empty where the name of its stage is enough.
    QString HaltText(const QString& id) const;

    /// The tasks that wait for an answer to SpaceLacking(), which UploadRetryAnswer() gives.
    QStringList TasksWithoutSpace() const;

    /// Tells the window where a page of a long list begins.
    Q_INVOKABLE QString DownloadTaskIdAt(int index) const { return m_downloads.IdAt(index); }

    void RemoveSubmitTasks(const QStringList& ids, bool byUser) override;
    void RemoveDownloadTasks(const QStringList& ids) override;
    void StopDownloadTasks(const QStringList& ids) override;
    void ResumeDownloadTasks(const QStringList& ids) override;
    void StopSubmitTasks() override;
    void ResumeSubmitTasks() override;
    QVariantMap* GetDownloadTasks() override;
    QString GetTaskSceneFile(const QString& id) override;
    QString GetTaskStartTime(const QString& id) override;
    QString GetTaskMessage(const QString& id) override;
    int GetTaskStage(const QString& id) override;
    int GetTaskProgress(const QString& id) override;
    QString GetTaskUploadText(const QString& id) override;
    int GetTaskErrorCode(const QString& id) override;
    QStringList GetSubmitTaskIds() override;
    int GetSubmitTaskCount() override;
    QVariantList GetTaskArguments(const QString& id) override;
    void UploadRetryAnswer(const QString& id, bool retry) override;
    void LackTextureAnswer(const QString& id, bool goOn) override;
    void ContinueSubmit(const QString& id) override;
    int SubmitScene(const QString& sceneFile) override;
    void RedownloadTasks(const QStringList& ids) override;

signals:
    /// The server, the session on it or the download folder has changed.
    void AccessChanged(const FarmAccess& access);

    /// @param text tells the user of trouble with the disk.
    void Notice(const QString& text);

    /// A scene that SubmitScene() has accepted cannot be submitted after all.
    /// @param reason a sentence for the user.
    void SceneRefused(const QString& sceneFile, const QString& reason);

    /// The files of a task would exceed the account's space on the farm. The window does not ask about them.
    void SpaceLacking(const QString& id);

public slots:
    /// Removes all finished downloads from the list. Their files stay.
    void ClearFinishedDownloads();
    void RetryFailedDownloads();
    /// Puts the messages of downloads into the current language. Those of submissions are translated on each request.
    void Retranslate();
    void SetArgument(QString id, QVariantList arguments) override;
    void TriggerJobIdType(QVariantMap orders) override;

    /// Repeats automatic orders for jobs that are finished again.
    /// @param answer is the answer to a request for a list of jobs.
    void HandleJobList(int code, const QVariantMap& answer);

private:
    void UpdateAccess();
    void HandleUploadFailure(const QString& id, const QStringList& files);
    const SubmitTask& Task(const QString& id) const;

    VTSettingsInterface* m_settings;
    SubmitQueue m_submissions;
    DownloadQueue m_downloads;
    AutomaticOrders m_automaticOrders;
    FinishNotice m_finishNotice;
    QUrl m_server;
    bool m_isServerOnThisComputer = false;
    QString m_serverName;
    QString m_userName;
    QString m_token;
    ProxyLogin m_proxy;
    ConnectionFeed* m_feed = nullptr;
    QPointer<QObject> m_formFilter;
};
