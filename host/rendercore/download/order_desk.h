#pragma once

#include "host/base/backoff.h"
#include "host/farmclient/farm_access.h"
#include "host/rendercore/download/download_limits.h"
#include "host/rendercore/download/download_store.h"

#include <QObject>
#include <QSet>
#include <QTimer>

#include <memory>

/// Asks the farm for the files of ordered jobs until each order is answered, and creates tasks for them.
class OrderDesk : public QObject
{
    Q_OBJECT

public:
    /// @param store, transport must outlive this object.
    OrderDesk(DownloadStore* store, HttpTransport* transport, const DownloadLimits& limits);
    ~OrderDesk() override;

    /// Drops the running requests and starts over with the orders of the new owner.
    void SetAccess(const FarmAccess& access);

    /// @param folder receives the files of orders that are answered from now on.
    void SetFolder(const QString& folder) { m_access.folder = folder; }

    /// Asks for open orders at once, even after a failure.
    void RetryNow();

signals:
    /// The order is answered and on the disk.
    void Applied(const DownloadOrder& order, const OrderOutcome& outcome);
    /// The farm refuses the order permanently.
    /// @param reason sentences for the user.
    void Refused(const DownloadOrder& order, const QString& reason);
    void SignedOut();

private:
    void AskForOpenOrders();
    void Ask(const DownloadOrder& order);
    void HandleAnswer(const DownloadOrder& order, const HttpResult& result);
    void Apply(const DownloadOrder& order, const FarmFiles& files);
    void Close(const DownloadOrder& order, const QString& reason);
    void Postpone(const DownloadOrder& order);

    DownloadStore* m_store;
    HttpTransport* m_transport;
    DownloadLimits m_limits;
    FarmAccess m_access;
    std::unique_ptr<QObject> m_calls; // owns the running requests
    QSet<QString> m_asked;            // jobs of the running requests
    Backoff m_backoff;
    QTimer m_pause;
};
