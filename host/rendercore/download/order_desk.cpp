#include "host/rendercore/download/order_desk.h"

#include "host/farmclient/farm_numbers.h"
#include "host/farmclient/http_call.h"
#include "host/rendercore/attempt.h"
#include "storage/checksum.h"

#include <QJsonArray>
#include <QUrl>

#include <algorithm>

namespace {

/// Entries without a name, a valid size or a checksum are left out.
FarmFiles FilesOf(const QJsonObject& answer)
{
    FarmFiles files;
    const QJsonArray list
        = answer.value(QLatin1String("data")).toObject().value(QLatin1String("list")).toArray();
    files.reserve(list.size());
    for (const QJsonValue& entry : list) {
        const QJsonObject object = entry.toObject();
        const double size = object.value(QLatin1String("size")).toDouble(-1);
        const FarmFile file {object.value(QLatin1String("name")).toString(),
            static_cast<qint64>(std::clamp(size, -1.0, FarmNumbers::LargestSize)),
            object.value(QLatin1String("checksum")).toString()};
        if (!file.name.isEmpty() && size >= 0 && size < FarmNumbers::LargestSize
            && storage::IsChecksum(file.checksum))
            files.append(file);
    }
    if (files.size() < list.size())
        qWarning(
            "the farm lists %d files without a valid name, size or checksum", list.size() - files.size());
    return files;
}

bool IsList(const HttpResult& result)
{
    return result.status == HttpStatus::Ok
        && result.json.value(QLatin1String("data")).toObject().value(QLatin1String("list")).isArray();
}

} // namespace

OrderDesk::OrderDesk(DownloadStore* store, HttpTransport* transport, const DownloadLimits& limits)
    : m_store(store)
    , m_transport(transport)
    , m_limits(limits)
    , m_backoff(limits.firstPause, limits.longestPause)
{
    m_pause.setSingleShot(true);
    connect(&m_pause, &QTimer::timeout, this, &OrderDesk::AskForOpenOrders);
}

OrderDesk::~OrderDesk() = default;

void OrderDesk::SetAccess(const FarmAccess& access)
{
    m_access = access;
    m_calls = std::make_unique<QObject>();
    m_asked.clear();
    m_backoff.Reset();
    RetryNow();
}

void OrderDesk::RetryNow()
{
    m_pause.start(0);
}

void OrderDesk::AskForOpenOrders()
{
    if (!m_access.IsOpen() || m_asked.size() >= m_limits.lists)
        return;
    // Reads twice as many as needed, since some may have been requested already.
    DownloadOrders orders;
    if (!Attempt("read the download orders",
            [&] { orders = m_store->OpenOrders(m_access.owner, 2 * m_limits.lists); }))
        m_pause.start(m_limits.longestPause);
    for (const DownloadOrder& order : qAsConst(orders)) {
        if (m_asked.size() < m_limits.lists && !m_asked.contains(order.job))
            Ask(order);
    }
}

void OrderDesk::Ask(const DownloadOrder& order)
{
    m_asked.insert(order.job);
    HttpRequest request;
    request.verb = QByteArrayLiteral("GET");
    request.target = "/jobs/" + QUrl::toPercentEncoding(order.job) + "/files";
    request.token = m_access.token.toUtf8();
    connect(new HttpCall(m_transport, request, m_calls.get()), &HttpCall::Finished, this,
        [this, order](const HttpResult& result) { HandleAnswer(order, result); });
}

void OrderDesk::HandleAnswer(const DownloadOrder& order, const HttpResult& result)
{
    m_asked.remove(order.job);
    if (IsList(result))
        Apply(order, FilesOf(result.json));
    else if (result.status == HttpStatus::Unauthorized)
        emit SignedOut();
    else if (result.status == FarmFault::TooLarge
        || (result.status > 0 && result.status != HttpStatus::Ok && !result.IsTransient()
            && !result.IsFromIntermediary()))
        Close(order, result.error);
    else
        Postpone(order);
}

void OrderDesk::Apply(const DownloadOrder& order, const FarmFiles& files)
{
    OrderOutcome outcome;
    if (!Attempt("add downloads",
            [&] { outcome = m_store->Apply(m_access.owner, order, files, m_access.folder); })) {
        Postpone(order);
        return;
    }
    m_backoff.Reset();
    RetryNow();
    emit Applied(order, outcome);
}

void OrderDesk::Close(const DownloadOrder& order, const QString& reason)
{
    qWarning(
        "the farm does not list the files of job %s: %s", qUtf8Printable(order.job), qUtf8Printable(reason));
    if (!Attempt("close a download order", [&] { m_store->CloseOrder(m_access.owner, order); })) {
        Postpone(order);
        return;
    }
    m_backoff.Reset();
    RetryNow();
    emit Refused(order, reason);
}

/// Lets the other orders go first.
void OrderDesk::Postpone(const DownloadOrder& order)
{
    Attempt("postpone a download order", [&] { m_store->PostponeOrder(m_access.owner, order.job); });
    m_pause.start(m_backoff.Fail());
}
