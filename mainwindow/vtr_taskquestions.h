#pragma once

#include "common/vtr_prompts.h"
#include "mainwindow/vtr_questionqueue.h"

#include <QCoreApplication>
#include <QObject>

class QTimer;
struct VTSession;

/// Asks the user what to do about files that a local task could not upload or find.
///
/// Questions are asked one at a time, each by a tick of a timer, so that none opens from inside the render core's
/// signal. They end with the session.
class VTTaskQuestions : public QObject
{
    Q_DECLARE_TR_FUNCTIONS(VTQsClientPrivate)

public:
    enum class Subject {
        FailedUploads,  ///< asks whether to upload them again
        MissingTextures ///< asks whether to go on without them
    };

    /// All must outlive this object.
    VTTaskQuestions(Subject subject, const VTServices& services, const VTSession& session,
        const VTPrompts& prompts, QTimer* pTimer);

    /// Queues a report and starts the timer.
    void Add(const QString& strTaskId, const QStringList& lstFile);

    /// Asks the next question unless one is open; stops the timer when none is left.
    void Tick();

    /// Forgets the waiting reports.
    void Forget() { m_queue.Clear(); }

private:
    VTQuestion Question(const VTQuestionQueue::Report& report) const;
    void Answer(const QString& strTaskId, bool bAgreed) const;

    Subject m_subject;
    const VTServices& m_services;
    const VTSession& m_session;
    const VTPrompts& m_prompts;
    QTimer* m_pTimer;
    VTQuestionQueue m_queue;
};
