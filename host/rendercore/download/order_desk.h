#pragma once

#include "host/rendercore/download/download_limits.h"
#include "host/rendercore/download/download_task.h"
#include "host/rendercore/farm_access.h"

#include <QObject>
#include <QSet>
#include <QTimer>

#include <memory>

class DownloadStore;

/// Asks the farm for the files of the jobs that were ordered, as long as it takes.
class OrderDesk : public QObject
{
    Q_OBJECT

public:
    /// @param store, transport must outlive this object.
    OrderDesk(DownloadStore* store, HttpTransport* transport, const DownloadLimits& limits);
    ~OrderDesk() override;

    /// Questions on their way are dropped; those that are open are asked anew.
    void SetAccess(const FarmAccess& access);

    // An order that was listed or refused is answered with one of these.

    /// It is done with.
    void GoOn();
    /// It cannot be done with now; it is asked about again after a pause, which grows with each failure.
    void Postpone(const DownloadOrder& order);

    /// There are orders; they are asked about even if the last failure is not long ago.
    void Hurry();

signals:
    void Listed(const DownloadOrder& order, const FarmFiles& files);
    /// The farm refuses the list for good, in a sentence of its own.
    void Refused(const DownloadOrder& order, const QString& reason);
    void SignedOut();

private:
    void Look();
    void Ask(const DownloadOrder& order);
    void Take(const DownloadOrder& order, const HttpResult& result);

    DownloadStore* m_store;
    HttpTransport* m_transport;
    DownloadLimits m_limits;
    FarmAccess m_access;
    std::unique_ptr<QObject> m_calls; // owns the calls of this access
    QSet<QString> m_asked;            // jobs
    QTimer m_pause;
    int m_failures = 0;
};
