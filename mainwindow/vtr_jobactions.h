#pragma once

#include "mainwindow/vtr_requests.h"

#include <QCoreApplication>
#include <QObject>
#include <QVariantMap>

class VTDownloadList;
class VTJobList;
class VTPrompts;
class VTSubmitList;
class VTTables;
struct VTMainForm;
struct VTSession;
struct VTServices;

/// The five actions of the toolbar on the checked rows of the current tab, and the judgement of the farm's answers.
class VTJobActions : public QObject
{
    Q_DECLARE_TR_FUNCTIONS(VTQsClientPrivate)

public:
    struct Dependencies
    {
        const VTMainForm& form;
        const VTServices& services;
        const VTSession& session;
        const VTRequests& requests;
        const VTTables& tables;
        const VTPrompts& prompts;
        const VTJobList& jobList;
        VTSubmitList& submitList;
        VTDownloadList& downloadList;
    };

    /// What the needs refer to must outlive this object.
    explicit VTJobActions(const Dependencies& dependencies);

    /// Asks first; on the other tabs it deletes local tasks or downloads.
    void Delete();

    /// Stops jobs; on the local tasks' tab it stops all submissions.
    void Stop() const;
    void Recover() const;
    void Restart() const;
    void FullRender() const;

    void HandleDeleteAnswer(int nRet) const;
    void HandleStopAnswer(int nRet) const;
    void HandleRecoverAnswer(int nRet, const QVariantMap& mapAnswer) const;
    void HandleRestartAnswer(int nRet, const QVariantMap& mapAnswer) const;
    void HandleFullRenderAnswer(int nRet, const QVariantMap& mapAnswer) const;

private:
    int CurrentTab() const;
    void Send(VTRequests::Operation operation, const QStringList& lstJobId) const;
    /// Sends an action for the checked jobs when the farm's jobs are in front.
    void SendForJobs(VTRequests::Operation operation) const;

    void HandleAnswer(int nRet, const QString& strFailure) const;
    void HandleAnswerOrRefusal(int nRet, const QVariantMap& mapAnswer, const QString& strFailure) const;

    Dependencies m_deps;
};
