#include "mainwindow/vtr_taskquestions.h"

#include "common/vtr_services.h"
#include "mainwindow/vtr_timers.h"

#include <QFileInfo>

#include <utility>

VTTaskQuestions::VTTaskQuestions(const VTServices& services, const VTPrompts& prompts, QTimer* pTimer,
    MakeQuestion makeQuestion, AnswerOperation answer)
    : m_services(services)
    , m_prompts(prompts)
    , m_pTimer(pTimer)
    , m_makeQuestion(std::move(makeQuestion))
    , m_answer(answer)
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
    const QString strName = QFileInfo(report->strTaskId).completeBaseName();
    const VTQuestion question = m_makeQuestion(strName, report->lstFile.join(QLatin1Char('\n')));

    const QPointer<VTTaskQuestions> pThis(this);
    const VTAnswer answer = m_prompts.Ask(question);
    if (!pThis)
        return;
    if (answer != VTAnswer::None && m_services.pRenderCore)
        (m_services.pRenderCore->*m_answer)(report->strTaskId, answer == VTAnswer::Agreed);
    if (pThis)
        m_queue.Answered();
}
