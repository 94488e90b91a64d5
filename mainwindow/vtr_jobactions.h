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

/// The five actions of the toolbar on the checked rows of the current tab, and the farm's answers to them.
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
        VTJobList& jobList;
        VTSubmitList& submitList;
        VTDownloadList& downloadList;
    };

    /// Everything in `dependencies` must outlive this object.
    explicit VTJobActions(const Dependencies& dependencies);

    /// Asks, then deletes the checked jobs, local tasks or downloads.
    void Delete();

    /// Stops the checked jobs, or on the local tasks' tab all submissions.
    void Stop() const;

    // These act on farm jobs only.
    void Recover() const;
    void Restart() const;
    void FullRender() const;

    // On success the current page is requested again; a failure is reported to the user.
    void HandleDeleteAnswer(int nRet) const;
    void HandleStopAnswer(int nRet) const;
    void HandleRecoverAnswer(int nRet, const QVariantMap& mapAnswer) const;
    void HandleRestartAnswer(int nRet, const QVariantMap& mapAnswer) const;
    void HandleFullRenderAnswer(int nRet, const QVariantMap& mapAnswer) const;

private:
    int CurrentTab() const;
    void Send(VTRequests::Operation operation, const QStringList& lstJobId) const;
    /// Sends an action for the checked jobs while the farm's jobs are in front.
    void SendForJobs(VTRequests::Operation operation) const;

    void HandleAnswer(int nRet, const QString& strFailure) const;
    void HandleAnswerOrRefusal(int nRet, const QVariantMap& mapAnswer, const QString& strFailure) const;

    Dependencies m_deps;
};
