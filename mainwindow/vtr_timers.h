#pragma once

#include <QTimer>

/// The window's six timers, all stopped at first. They are children of the window.
struct VTTimers
{
    static constexpr int JobListInterval = 15000; // ms, like the two below
    static constexpr int UserInfoInterval = 30000;
    static constexpr int TickInterval = 1000;

    explicit VTTimers(QObject* pWindow)
        : pSubmitList(New(pWindow, TickInterval))
        , pJobList(New(pWindow, JobListInterval))
        , pDownloadList(New(pWindow, TickInterval))
        , pUserInfo(new QTimer(pWindow)) // its interval is set when it starts
        , pLackTexture(New(pWindow, TickInterval))
        , pUploadRetry(New(pWindow, TickInterval))
    {
    }

    static void StartOnce(QTimer* pTimer)
    {
        if (!pTimer->isActive())
            pTimer->start();
    }

    void StopAll() const
    {
        for (QTimer* pTimer : {pSubmitList, pJobList, pDownloadList, pUserInfo, pLackTexture, pUploadRetry})
            pTimer->stop();
    }

    QTimer* pSubmitList;
    QTimer* pJobList;
    QTimer* pDownloadList;
    QTimer* pUserInfo;
    QTimer* pLackTexture;
    QTimer* pUploadRetry;

private:
    static QTimer* New(QObject* pWindow, int nMilliseconds)
    {
        auto* pTimer = new QTimer(pWindow);
        pTimer->setInterval(nMilliseconds);
        return pTimer;
    }
};
