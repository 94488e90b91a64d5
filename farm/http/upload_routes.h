#pragma once

#include <QJsonObject>

namespace farm {

class ApiRequest;
class ContentStore;
class HttpServer;
class JobSubmission;
class RequestGate;
class UploadStore;

/// The requests by which scenes come to the farm.
class SubmissionRoutes
{
public:
    SubmissionRoutes(
        RequestGate& gate, ContentStore& contents, UploadStore& uploads, JobSubmission& submission);

    /// The routes must outlive the server.
    void AddTo(HttpServer& server);

private:
    QJsonObject ListKnown(const ApiRequest& request);
    QJsonObject BeginUpload(const ApiRequest& request);
    QJsonObject ShowUpload(const ApiRequest& request);
    QJsonObject AppendToUpload(const ApiRequest& request);
    QJsonObject Unpack(const ApiRequest& request);
    QJsonObject Submit(const ApiRequest& request);

    RequestGate& m_gate;
    ContentStore& m_contents;
    UploadStore& m_uploads;
    JobSubmission& m_submission;
};

} // namespace farm
