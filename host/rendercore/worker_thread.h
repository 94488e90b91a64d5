#pragma once

#include <QObject>
#include <QThread>

#include <memory>
#include <utility>

/// Queues `work()` for the thread of the context object. Work still queued when the context is deleted is dropped.
template <typename Work>
void PostTo(QObject* context, Work work)
{
#ifndef __clang_analyzer__ // the analyzer does not see that Qt's event deletes the functor, and reports a leak
    QMetaObject::invokeMethod(context, std::move(work), Qt::QueuedConnection);
#else
    Q_UNUSED(context)
    work();
#endif
}

/// A worker in a thread of its own, for the lifetime of this object.
template <typename Worker>
class WorkerThread
{
public:
    /// @param make returns a std::unique_ptr<Worker>. It runs in the new thread, where the worker is also destroyed.
    template <typename Make>
    WorkerThread(const QString& name, Make make, QThread::Priority priority = QThread::InheritPriority)
    {
        m_thread.setObjectName(name);
        m_context.moveToThread(&m_thread);
        QObject::connect(
            &m_thread, &QThread::finished, &m_context, [this] { m_worker.reset(); }, Qt::DirectConnection);
        PostTo(&m_context, [this, make = std::move(make)]() mutable { m_worker = make(); });
        m_thread.start(priority);
    }

    /// Waits for the commands that were posted. Long work can look at QThread::isInterruptionRequested().
    ~WorkerThread()
    {
        // Quit is queued, so earlier commands run first.
        PostTo(&m_context, [] { QThread::currentThread()->quit(); });
        m_thread.requestInterruption();
        m_thread.wait();
    }

    WorkerThread(const WorkerThread&) = delete;
    WorkerThread& operator=(const WorkerThread&) = delete;

    /// Queues `command(Worker&)` for the worker's thread. Commands run in the order in which they are posted.
    template <typename Command>
    void Post(Command command)
    {
        PostTo(&m_context, [this, command = std::move(command)]() mutable { command(*m_worker); });
    }

private:
    QThread m_thread;
    QObject m_context;                // lives in the thread
    std::unique_ptr<Worker> m_worker; // touched by the thread only
};
