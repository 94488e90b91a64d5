#include "mainwindow/vtr_taskquestions.h"

#include "common/vtr_services.h"
#include "mainwindow/vtr_session.h"
#include "mainwindow/vtr_timers.h"

#include <QFileInfo>

VTTaskQuestions::VTTaskQuestions(Subject subject, const VTServices& services, const VTSession& session,
    const VTPrompts& prompts, QTimer* pTimer)
    : m_subject(subject)
    , m_services(services)
    , m_session(session)
    , m_prompts(prompts)
    , m_pTimer(pTimer)
{
}

void VTTaskQuestions::Add(const QString& strTaskId, const QStringList& lstFile)
{
    m_queue.Add(strTaskId, lstFile);
    VTTimers::StartOnce(m_pTimer);
}

void VTTaskQuestions::Tick()
{
    if (m_queue.IsEmpty()) {
        m_pTimer->stop();
        return;
    }
    const auto report = m_queue.Take();
    if (!report)
        return;
    const int nSession = m_session.nNumber;
    const VTAnswer answer = m_prompts.Ask(Question(*report));
    if (answer != VTAnswer::None && m_session.nNumber == nSession)
        Answer(report->strTaskId, answer == VTAnswer::Agreed);
    m_queue.Answered();
}

VTQuestion VTTaskQuestions::Question(const VTQuestionQueue::Report& report) const
{
    const QString strTask = QFileInfo(report.strTaskId).completeBaseName();
    const QString strFiles = report.lstFile.join(QLatin1Char('\n'));
    if (m_subject == Subject::FailedUploads)
        return {
            strTask, tr("Retry uploading?Failed to upload files:"), strFiles, tr("Cancel"), tr("Ok"), true};
    return {strTask, QString(), tr("Continue next step?\nBelow files are missing:\n%1").arg(strFiles),
        tr("Cancel"), tr("Ok"), false};
}

void VTTaskQuestions::Answer(const QString& strTaskId, bool bAgreed) const
{
    if (!m_services.pRenderCore)
        return;
    if (m_subject == Subject::FailedUploads)
        m_services.pRenderCore->UploadRetryAnswer(strTaskId, bAgreed);
    else
        m_services.pRenderCore->LackTextureAnswer(strTaskId, bAgreed);
}
