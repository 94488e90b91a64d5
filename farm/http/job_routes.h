#pragma once

#include "farm/jobs/job_actions.h"

#include <QJsonObject>

namespace farm {

class ApiRequest;
class HttpServer;
class JobStore;
class JobSubmission;
class RequestGate;

/// Routes for submitting, listing and controlling jobs.
class JobRoutes
{
public:
    JobRoutes(RequestGate& gate, JobStore& jobs, JobActions& actions, JobSubmission& submission);

    /// The routes must outlive the server.
    void AddTo(HttpServer& server);

private:
    QJsonObject List(const ApiRequest& request);
    QJsonObject Search(const ApiRequest& request);
    QJsonObject Show(const ApiRequest& request);
    QJsonObject Act(JobAction action, const ApiRequest& request);
    QJsonObject SetPriority(const ApiRequest& request);
    QJsonObject Submit(const ApiRequest& request);

    RequestGate& m_gate;
    JobStore& m_jobs;
    JobActions& m_actions;
    JobSubmission& m_submission;
};

} // namespace farm
