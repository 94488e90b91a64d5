#pragma once

#include "common/vtr_prompts.h"
#include "mainwindow/vtr_questionqueue.h"

#include <QObject>

#include <functional>

class QTimer;
class VTRenderCoreInterface;

/// Reports of the render core that the user decides on, asked one at a time and a tick apart, so that no question opens
/// from inside the render core's own signal.
class VTTaskQuestions : public QObject
{
public:
    /// Texts of the question about one task: its name and its files, one a line.
    using MakeQuestion = std::function<VTQuestion(const QString& strTaskName, const QString& strFiles)>;
    /// Where a yes or no goes.
    using AnswerOperation = void (VTRenderCoreInterface::*)(const QString&, bool);

    /// siblings, prompts and pTimer must outlive this object.
    VTTaskQuestions(const VTServices& services, const VTPrompts& prompts, QTimer* pTimer,
        MakeQuestion makeQuestion, AnswerOperation answer);

    void Add(const QString& strTaskId, const QStringList& lstFile);

    /// Asks the next question unless one is open; stops the timer when none is left.
    void Tick();

private:
    const VTServices& m_services;
    const VTPrompts& m_prompts;
    QTimer* m_pTimer;
    MakeQuestion m_makeQuestion;
    AnswerOperation m_answer;
    VTQuestionQueue m_queue;
};
