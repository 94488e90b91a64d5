#pragma once

#include "host/farmclient/farm_protocol.h"
#include "host/farmclient/http_transport.h"
#include "host/services/service_base.h"
#include "vtr_communicationinterface.h"

#include <QHash>
#include <QPointer>

#include <memory>

/// All requests to the farm.
///
/// A request that is taken gets its answer as a signal, later, whatever becomes of the server. The exceptions: requests
/// of a session that has ended, or that a newer one replaces, are cancelled and never answered.
class CommunicationService : public ServiceBase<VTCommunicationInterface>
{
    Q_OBJECT
    Q_INTERFACES(VTCommunicationInterface)

public:
    explicit CommunicationService(const HttpLimits& limits = {}, QObject* parent = nullptr);

    /// @param url root of the server, without the interface's own path; empty while there is none.
    void SetServerUrl(const QUrl& url);

    /// Ends what is left of an earlier session and starts a new one; answered by SignInResponse.
    void SignIn(const QString& name, const QString& password);

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
    /// The server no longer knows the session that a request belonged to. Once a session.
    void SessionExpired();

private:
    using Response = void (VTCommunicationInterface::*)(int, QVariantMap);

    /// What is to be done with the result of a request.
    struct Handling
    {
        FarmProtocol::Check check;
        Response response;
        QVariantMap echo = {};
    };

    HttpCall* Send(const HttpRequest& request, const Handling& handling);
    int Submit(const QVariant& status, const HttpRequest& request, const Handling& handling);
    int SubmitAction(
        const QVariant& status, const QByteArray& action, const QVariantHash& request, Response response);
    void BeginSession();
    void ReportExpiry();

    HttpTransport m_transport;
    std::unique_ptr<QObject> m_session;        // owns the session's calls, so that they end with it
    QHash<int, QPointer<HttpCall>> m_jobLists; // the newest request by its identifier
    bool m_expiryReported = false;
};
