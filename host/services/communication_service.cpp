#include "host/services/communication_service.h"

#include "host/farmclient/connection_feed.h"
#include "host/farmclient/farm_events.h"

using FarmProtocol::Answer;

namespace {

// The identifier of requests for the window's table; requests with other identifiers belong to dialogs.
constexpr int OfTable = 0;

QVariantMap Echo(const QVariantHash& request, const QStringList& keys)
{
    QVariantMap echo;
    for (const QString& key : keys)
        echo.insert(key, request.value(key));
    return echo;
}

} // namespace

CommunicationService::CommunicationService(const HttpLimits& limits, QObject* parent)
    : ServiceBase<VTCommunicationInterface>(parent)
    , m_transport(limits)
    , m_session(std::make_unique<QObject>())
{
    for (QTimer* timer : {&m_accountAnswer, &m_jobsAnswer})
        timer->setSingleShot(true);
    connect(&m_accountAnswer, &QTimer::timeout, this, &CommunicationService::AnswerWithAnnouncedAccount);
    connect(&m_jobsAnswer, &QTimer::timeout, this,
        [this] { emit JobListResponse(HttpStatus::Ok, m_announcedJobs.Take()); });
}

void CommunicationService::SetServerUrl(const QUrl& url)
{
    m_server = url;
    if (m_events)
        m_events->Reopen();
    m_transport.SetBaseUrl(FarmApiRoot(url));
}

void CommunicationService::SignIn(const QString& name, const QString& password)
{
    BeginSession();
    Send(FarmProtocol::SignInRequest(name, password),
        {FarmProtocol::IsSession, &VTCommunicationInterface::SignInResponse});
}

void CommunicationService::FollowChanges(const QString& token)
{
    delete m_events.data();
    m_events = new FarmEvents(&m_transport, token.toLatin1(), m_session.get());
    connect(m_events, &FarmEvents::Changed, this, &CommunicationService::HandleChanges);
    connect(m_events, &FarmEvents::Heard, this, [this] {
        if (m_transport.Feed() && m_announcedJobs.IsKnown())
            m_transport.Feed()->ConfirmList();
    });
}

void CommunicationService::HandleChanges(const FarmChanges& changes)
{
    const QJsonObject body {{QStringLiteral("data"), changes.account}};
    // A change that comes without the new balances makes those announced before out of date.
    if (changes.money) {
        m_announcedAccount = FarmProtocol::IsUserInfo(body) ? body : QJsonObject();
        m_accountAge.start();
        m_accountIsNews = true;
    }
    m_announcedJobs.Update(changes);
    emit FarmChanged(changes);
}

void CommunicationService::AnswerWithAnnouncedAccount()
{
    m_accountIsNews = false;
    const Answer answer
        = FarmProtocol::Decode({HttpStatus::Ok, m_announcedAccount}, FarmProtocol::IsUserInfo, {});
    emit UserInfoResponse(answer.code, answer.map);
}

bool CommunicationService::IsFollowing() const
{
    return m_events && m_events->IsAnnouncing();
}

bool CommunicationService::IsFetchingJobs() const
{
    const auto list = m_jobLists.constFind(OfTable);
    return list != m_jobLists.constEnd() && list->call && !list->request.isEmpty();
}

int CommunicationService::SignOut(const QVariant& status, const QVariantHash& request)
{
    if (const int refusal = CheckRequest(status))
        return refusal;
    BeginSession();
    m_expiryReported = true;
    return Submit(status, FarmProtocol::SignOutRequest(request),
        {FarmProtocol::IsAnyObject, &VTCommunicationInterface::SignOutResponse});
}

int CommunicationService::GetUserInfo(const QVariant& status, const QVariantHash& request)
{
    if (const int refusal = CheckRequest(status))
        return refusal;
    const bool isFresh = IsFollowing() && !m_accountAge.hasExpired(AnnouncedJobList::LongestTrust);
    if (m_announcedAccount.isEmpty() || !(m_accountIsNews || isFresh) || m_accountAnswer.isActive())
        Send(FarmProtocol::UserInfoRequest(request),
            {FarmProtocol::IsUserInfo, &VTCommunicationInterface::UserInfoResponse});
    else
        m_accountAnswer.start();
    return StatusOk;
}

int CommunicationService::StopJobs(const QVariant& status, const QVariantHash& request)
{
    return SubmitAction(status, "stop", request, &VTCommunicationInterface::StopJobResponse);
}

int CommunicationService::DeleteJobs(const QVariant& status, const QVariantHash& request)
{
    return SubmitAction(status, "delete", request, &VTCommunicationInterface::DeleteJobResponse);
}

HttpCall* CommunicationService::AskToDelete(const QVariantHash& request)
{
    HttpCall* call = Ask(FarmProtocol::JobActionRequest("delete", request));
    connect(call, &HttpCall::Finished, this, [this, call](const HttpResult& result) {
        const Answer answer = FarmProtocol::Decode(result, FarmProtocol::IsAnyObject, {});
        KeepJobList(call, answer, true);
        if (answer.code == HttpStatus::Ok)
            emit DeleteJobResponse(answer.code, answer.map);
    });
    return call;
}

int CommunicationService::RecoverJobs(const QVariant& status, const QVariantHash& request)
{
    return SubmitAction(status, "recover", request, &VTCommunicationInterface::RecoverJobResponse);
}

int CommunicationService::RestartJobs(const QVariant& status, const QVariantHash& request)
{
    return SubmitAction(status, "restart", request, &VTCommunicationInterface::RestartJobResponse);
}

int CommunicationService::FullRender(const QVariant& status, const QVariantHash& request)
{
    return SubmitAction(status, "full-render", request, &VTCommunicationInterface::FullRenderResponse);
}

int CommunicationService::GetJobList(const QVariant& status, const QVariantHash& request)
{
    if (const int refusal = CheckRequest(status))
        return refusal;
    const QString key = QStringLiteral("identifier");
    const int identifier = request.value(key).toInt();
    JobList& newest = m_jobLists[identifier];
    const bool isAnnounced = identifier == OfTable && m_announcedJobs.Answers(request, IsFollowing());
    // Over a slow link, a list that every refresh replaces would never arrive.
    if (newest.call && newest.request == request && !isAnnounced)
        return StatusOk;
    // The answer for an earlier page must not arrive after the one for the page now shown.
    delete newest.call.data();
    if (identifier == OfTable)
        m_jobsAnswer.stop();
    if (isAnnounced) {
        m_jobsAnswer.start();
        return StatusOk;
    }
    newest.request = request;
    const QString conditions = QStringLiteral("conditions");
    QVariantHash asked = request;
    if (m_translateConditions)
        asked.insert(conditions, m_translateConditions(request.value(conditions).toString()));
    newest.call = Send(FarmProtocol::JobListRequest(asked),
        {FarmProtocol::IsJobList, &VTCommunicationInterface::JobListResponse,
            Echo(request, {key, conditions})});
    return StatusOk;
}

int CommunicationService::GetJobInfo(const QVariant& status, const QVariantHash& request)
{
    return Submit(status, FarmProtocol::JobInfoRequest(request),
        {FarmProtocol::IsJobInfo, &VTCommunicationInterface::JobInfoResponse,
            Echo(request, {QStringLiteral("jobId"), QStringLiteral("identifier")})});
}

int CommunicationService::GetProjectList(const QVariant& status, const QVariantHash& request)
{
    return Submit(status, FarmProtocol::ProjectListRequest(request),
        {FarmProtocol::IsProjectList, &VTCommunicationInterface::ProjectListResponse});
}

HttpCall* CommunicationService::Send(const HttpRequest& request, const Handling& handling)
{
    HttpCall* call = Ask(request);
    const bool ofSession = !request.token.isEmpty();
    connect(call, &HttpCall::Finished, this, [this, handling, ofSession, call](const HttpResult& result) {
        const Answer answer = FarmProtocol::Decode(result, handling.check, handling.echo);
        const QPointer<QObject> session = m_session.get();
        KeepJobList(call, answer, handling.changesJobs);
        m_latestFault = result.fault;
        emit(this->*handling.response)(answer.code, answer.map);
        if (ofSession && answer.code == HttpStatus::Unauthorized && session)
            ReportExpiry();
    });
    return call;
}

void CommunicationService::KeepJobList(const HttpCall* call, const Answer& answer, bool hasChanged)
{
    if (hasChanged)
        m_announcedJobs.Forget();
    for (auto list = m_jobLists.begin(); list != m_jobLists.end(); ++list) {
        const bool hasArrived = list->call == call;
        if (hasArrived && list.key() == OfTable && answer.code == HttpStatus::Ok)
            m_announcedJobs.Set(list->request, answer.map);
        // After an action, a list on its way may still show the jobs as they were, so the next request replaces it.
        if (hasArrived || hasChanged)
            list->request.clear();
    }
}

int CommunicationService::Submit(const QVariant& status, const HttpRequest& request, const Handling& handling)
{
    if (const int refusal = CheckRequest(status))
        return refusal;
    Send(request, handling);
    return StatusOk;
}

int CommunicationService::SubmitAction(
    const QVariant& status, const QByteArray& action, const QVariantHash& request, Response response)
{
    return Submit(status, FarmProtocol::JobActionRequest(action, request),
        {FarmProtocol::IsAnyObject, response, {}, true});
}

void CommunicationService::BeginSession()
{
    m_jobLists.clear();
    m_announcedAccount = {};
    m_accountAnswer.stop();
    m_announcedJobs.Forget();
    m_jobsAnswer.stop();
    m_session = std::make_unique<QObject>();
    m_expiryReported = false;
}

void CommunicationService::ReportExpiry()
{
    if (m_expiryReported)
        return;
    m_expiryReported = true;
    emit SessionExpired();
}
