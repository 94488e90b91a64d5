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
struct VTSiblings;

/// The five actions of the toolbar on the checked rows of the current tab, and the judgement of the farm's answers.
class VTJobActions : public QObject
{
    Q_DECLARE_TR_FUNCTIONS(VTQsClientPrivate)

public:
    struct Needs
    {
        const VTMainForm& form;
        const VTSiblings& siblings;
        const VTSession& session;
        const VTRequests& requests;
        const VTTables& rows;
        const VTPrompts& prompts;
        const VTJobList& jobList;
        VTSubmitList& submitList;
        VTDownloadList& downloadList;
    };

    /// What the needs refer to must outlive this object.
    explicit VTJobActions(const Needs& needs);

    /// Asks first; on the other tabs it deletes local tasks or downloads.
    void Delete();

    /// Stops jobs; on the local tasks' tab it stops all submissions.
    void Stop() const;
    void Recover() const;
    void Restart() const;
    void FullRender() const;

    void TakeDeleteAnswer(int nRet) const;
    void TakeStopAnswer(int nRet) const;
    void TakeRecoverAnswer(int nRet, const QVariantMap& mapAnswer) const;
    void TakeRestartAnswer(int nRet, const QVariantMap& mapAnswer) const;
    void TakeFullRenderAnswer(int nRet, const QVariantMap& mapAnswer) const;

private:
    int CurrentTab() const;
    void Send(VTRequests::Operation operation, const QStringList& lstJobId) const;
    /// Sends an action for the checked jobs when the farm's jobs are in front.
    void SendForJobs(VTRequests::Operation operation) const;

    void TakeAnswer(int nRet, const QString& strFailure) const;
    void TakeAnswerOrRefusal(int nRet, const QVariantMap& mapAnswer, const QString& strFailure) const;

    Needs m_needs;
};
