#pragma once

#include "vtr_baseinterface.h"

#include <QObject>
#include <QVariantHash>
#include <QVariantMap>

/// All requests to the farm and their answers.
///
/// A request takes the status that `Show` wrote at attachment, and a map keyed by the protocol's field names
/// ("username" and "token" in each). It returns 0 when it was accepted. The answer comes as a signal, at once or later:
/// `nRet` is 200 for success and anything else for failure; the payload is under "data".
class VTCommunicationInterface : public QObject, public VTBaseInterface
{
    Q_OBJECT
    Q_INTERFACES(VTBaseInterface)

public:
    using QObject::QObject;

    virtual int SignOut(const QVariant& varStatus, const QVariantHash& mapRequest) = 0;
    virtual int GetUserInfo(const QVariant& varStatus, const QVariantHash& mapRequest) = 0;

    // The job actions carry the jobs' ids under "id[0]", "id[1]", …
    virtual int StopJobs(const QVariant& varStatus, const QVariantHash& mapRequest) = 0;
    virtual int DeleteJobs(const QVariant& varStatus, const QVariantHash& mapRequest) = 0;
    virtual int RecoverJobs(const QVariant& varStatus, const QVariantHash& mapRequest) = 0;
    virtual int RestartJobs(const QVariant& varStatus, const QVariantHash& mapRequest) = 0;
    virtual int FullRender(const QVariant& varStatus, const QVariantHash& mapRequest) = 0;

    /// Keys "page" (from 1), "pageSize", "identifier" (echoed by the answer), "conditions" (JSON text, may be absent).
    virtual int GetJobList(const QVariant& varStatus, const QVariantHash& mapRequest) = 0;

    /// Keys "id", "jobId", "jobtype", "identifier"; the answer echoes "jobId" and "identifier".
    virtual int GetJobInfo(const QVariant& varStatus, const QVariantHash& mapRequest) = 0;
    virtual int GetProjectList(const QVariant& varStatus, const QVariantHash& mapRequest) = 0;

signals:
    void SignInResponse(int nRet, QVariantMap mapData);
    void JobListResponse(int nRet, QVariantMap mapData);
    void DeleteJobResponse(int nRet, QVariantMap mapData);
    void UserInfoResponse(int nRet, QVariantMap mapData);
    void SignOutResponse(int nRet, QVariantMap mapData);
    void RecoverJobResponse(int nRet, QVariantMap mapData);
    void RestartJobResponse(int nRet, QVariantMap mapData);
    void StopJobResponse(int nRet, QVariantMap mapData);
    void FullRenderResponse(int nRet, QVariantMap mapData);
    void JobInfoResponse(int nRet, QVariantMap mapData);
    void ProjectListResponse(int nRet, QVariantMap mapData);
};

Q_DECLARE_INTERFACE(VTCommunicationInterface, "com.vtr.communication")
