#pragma once

#include "host/farmclient/event_stream.h"
#include "host/farmclient/farm_protocol.h"
#include "host/farmclient/http_call.h"
#include "host/farmclient/http_transport.h"
#include "host/services/announced_job_list.h"
#include "host/services/service_base.h"
#include "vtr_communicationinterface.h"

#include <QElapsedTimer>
#include <QHash>
#include <QPointer>
#include <QTimer>

#include <functional>
#include <memory>

class FarmEvents;

/// Sends the window's requests to the farm.
///
/// Every accepted request is answered by a signal, later, whatever happens to the server. The only exceptions are
/// requests of an ended session and job lists that a newer request replaces: they are cancelled and never answered. A
/// list that is requested again while it is arriving is delivered once. While the farm announces changes, requests for
/// lists and balances that it has sent recently are answered without asking it again.
class CommunicationService : public ServiceBase<VTCommunicationInterface>
{
    Q_OBJECT
    Q_INTERFACES(VTCommunicationInterface)

public:
    explicit CommunicationService(const HttpLimits& limits = {}, QObject* parent = nullptr);

    /// @param url is the root of the server, without the path of the farm's interface; empty while there is none.
    void SetServerUrl(const QUrl& url);
    QUrl ServerUrl() const { return m_server; }

    /// @return the proxy between this client and the server; empty for none.
    QString Proxy() const { return ProxyName(m_server); }
    /// @param feed is told of all exchanges; it must outlive this service.
    void SetFeed(ConnectionFeed* feed) { m_transport.SetFeed(feed); }
    void SetProxyLogin(const ProxyLogin& login) { m_transport.SetProxyLogin(login); }

    /// Cancels the requests of an earlier session and starts a new one; answered by SignInResponse.
    void SignIn(const QString& name, const QString& password);

    /// @param translation turns the conditions of the window's lists into the ones sent to the farm.
    void SetConditionsTranslation(const std::function<QString(const QString&)>& translation)
    {
        m_translateConditions = translation;
    }

    /// Emits FarmChanged for the farm's announcements until the session ends. Some farms announce nothing.
    /// @param token identifies the session.
    void FollowChanges(const QString& token);

    /// The next request for a list goes to the farm, whatever has been announced.
    void DistrustAnnouncements() { m_announcedJobs.Forget(); }

    /// Sends a request of the host's own, which no signal answers.
    /// @return the call; it ends with the session.
    HttpCall* Ask(const HttpRequest& request) { return new HttpCall(&m_transport, request, m_session.get()); }

    /// Deletes jobs for the host. The window hears only of a success, since its list has to follow.
    /// @param request is like that of DeleteJobs(). @return the call; it ends with the session.
    HttpCall* AskToDelete(const QVariantHash& request);

    /// @return why the request whose answer is being delivered has failed; callers make their own text of it.
    const FarmFault& LatestFault() const { return m_latestFault; }

    /// @return whether a list for the window's table is on its way and should not be replaced.
    bool IsFetchingJobs() const;

    int SignOut(const QVariant& status, const QVariantHash& request) override;
    int GetUserInfo(const QVariant& status, const QVariantHash& request) override;
    int StopJobs(const QVariant& status, const QVariantHash& request) override;
    int DeleteJobs(const QVariant& status, const QVariantHash& request) override;
    int RecoverJobs(const QVariant& status, const QVariantHash& request) override;
    int RestartJobs(const QVariant& status, const QVariantHash& request) override;
    int FullRender(const QVariant& status, const QVariantHash& request) override;
    int GetJobList(const QVariant& status, const QVariantHash& request) override;
    int GetJobInfo(const QVariant& status, const QVariantHash& request) override;
    int GetProjectList(const QVariant& status, const QVariantHash& request) override;

signals:
    /// The farm no longer knows the session. Emitted once per session.
    void SessionExpired();

    /// The jobs or the money of the session's account have changed.
    void FarmChanged(const FarmChanges& changes);

private:
    using Response = void (VTCommunicationInterface::*)(int, QVariantMap);

    /// Converts the result of a request into an answer.
    struct Handling
    {
        FarmProtocol::Check check;
        Response response;
        QVariantMap echo = {};
        bool changesJobs = false;
    };

    /// A job list that is on its way.
    struct JobList
    {
        QPointer<HttpCall> call;
        QVariantHash request;
    };

    HttpCall* Send(const HttpRequest& request, const Handling& handling);
    int Submit(const QVariant& status, const HttpRequest& request, const Handling& handling);
    int SubmitAction(
        const QVariant& status, const QByteArray& action, const QVariantHash& request, Response response);
    void HandleChanges(const FarmChanges& changes);
    bool IsFollowing() const;
    void AnswerWithAnnouncedAccount();
    /// @param call has received the answer. @param hasChanged whether the request has changed jobs.
    void KeepJobList(const HttpCall* call, const FarmProtocol::Answer& answer, bool hasChanged);
    void BeginSession();
    void ReportExpiry();

    QUrl m_server;
    HttpTransport m_transport;
    std::unique_ptr<QObject> m_session; // owns the session's calls, which end with it
    QPointer<FarmEvents> m_events;
    QJsonObject m_announcedAccount; // the body of an answer; empty while unknown
    QElapsedTimer m_accountAge;     // time since the account was announced
    bool m_accountIsNews = false;   // whether the window has not received it yet
    QTimer m_accountAnswer;
    AnnouncedJobList m_announcedJobs; // the list of the window's table
    QTimer m_jobsAnswer;
    std::function<QString(const QString&)> m_translateConditions; // may be empty
    QHash<int, JobList> m_jobLists;                               // the newest by the request's identifier
    FarmFault m_latestFault;
    bool m_expiryReported = false;
};
