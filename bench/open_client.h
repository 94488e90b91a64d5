#pragma once

#include "bench/shared_lists.h"
#include "tests/standins/client.h"

inline constexpr int PageSize = 18;
inline constexpr int LowProgress = 10; // percent, like the next two
inline constexpr int SameBand = 30;
inline constexpr int OtherBand = 60;
inline const QString Skin = QStringLiteral("default");

inline QVariantList Jobs(int count, int first, int progress)
{
    QVariantList jobs;
    for (int number = first; number < first + count; ++number)
        jobs.append(MakeJob(number, 1, progress));
    return jobs;
}

inline void Paint()
{
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

/// The window of the built plugin, on the screen and signed in, with lists of one page.
class OpenClient
{
protected:
    OpenClient()
    {
        m_client.uiLoader.skin = Skin;
        m_client.leftOut = QStringList {"VTRenderCoreInterface"_s};
        m_client.Start();
        m_client.Context()->registerService({"VTRenderCoreInterface"_s}, &m_renderCore);
        m_client.Open();
        m_client.SignIn();
        m_renderCore.Resize(PageSize);
    }

    void Deliver(const QVariantList& jobs) { m_client.communication.DeliverJobs(jobs, PageSize); }

    void ChangeProgress()
    {
        m_progress = m_progress == LowProgress ? SameBand : LowProgress;
        m_renderCore.SetProgress(m_progress);
    }

    /// The stand-ins' records would count as growth of the client.
    void ForgetRecords()
    {
        journal.clear();
        m_client.communication.requests.clear();
        m_client.logger.lines.clear();
        m_renderCore.seenEvents.clear();
        m_renderCore.orders.clear();
        for (QStringList* calls : {&m_client.settings.calls, &m_client.logger.calls, &m_client.uiLoader.calls,
                 &m_client.uiLoader.loadedKeys, &m_client.messageBox.calls, &m_client.communication.calls,
                 &m_client.configuration.calls, &m_client.previewer.calls, &m_renderCore.calls})
            calls->clear();
    }

    SharedLists m_renderCore;
    Client m_client;
    int m_progress = LowProgress;
};
