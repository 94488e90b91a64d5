#include "host/rendercore/download/order_desk.h"

#include "host/farmclient/http_call.h"
#include "host/rendercore/download/download_store.h"
#include "storage/durable_file.h"

#include <QJsonArray>
#include <QUrl>

#include <algorithm>

namespace {

constexpr double largestSize = 1LL << 50;
constexpr int mostDoublings = 10;

/// What is no file with a name, a size and a checksum is left out.
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
            static_cast<qint64>(std::clamp(size, -1.0, largestSize)),
            object.value(QLatin1String("checksum")).toString()};
        if (!file.name.isEmpty() && size >= 0 && size < largestSize && storage::IsChecksum(file.checksum))
            files.append(file);
    }
    if (files.size() < list.size())
        qWarning("%d entries of a list of files cannot be read", list.size() - files.size());
    return files;
}

bool IsList(const HttpResult& result)
{
    return result.status == 200
        && result.json.value(QLatin1String("data")).toObject().value(QLatin1String("list")).isArray();
}

} // namespace

OrderDesk::OrderDesk(DownloadStore* store, HttpTransport* transport, const DownloadLimits& limits)
    : m_store(store)
    , m_transport(transport)
    , m_limits(limits)
{
    m_pause.setSingleShot(true);
    connect(&m_pause, &QTimer::timeout, this, &OrderDesk::Look);
}

OrderDesk::~OrderDesk() = default;

void OrderDesk::SetAccess(const FarmAccess& access)
{
    m_access = access;
    m_calls = std::make_unique<QObject>();
    m_asked.clear();
    m_failures = 0;
    m_pause.start(0);
}

void OrderDesk::Hurry()
{
    m_pause.start(0);
}

void OrderDesk::GoOn()
{
    m_failures = 0;
    m_pause.start(0);
}

void OrderDesk::Look()
{
    if (!m_access.IsOpen() || m_asked.size() >= m_limits.lists)
        return;
    // Those that are asked about already may be among them.
    try {
        const DownloadOrders orders = m_store->OpenOrders(m_access.owner, 2 * m_limits.lists);
        for (const DownloadOrder& order : orders) {
            if (m_asked.size() < m_limits.lists && !m_asked.contains(order.job))
                Ask(order);
        }
    } catch (const std::exception& failure) {
        qWarning("the orders of downloads cannot be read: %s", failure.what());
        m_pause.start(m_limits.longestPause);
    }
}

void OrderDesk::Ask(const DownloadOrder& order)
{
    m_asked.insert(order.job);
    HttpRequest request;
    request.verb = QByteArrayLiteral("GET");
    request.target = "/jobs/" + QUrl::toPercentEncoding(order.job) + "/files";
    request.token = m_access.token.toUtf8();
    connect(m_transport->Send(request, m_calls.get()), &HttpCall::Finished, this,
        [this, order](const HttpResult& result) { Take(order, result); });
}

void OrderDesk::Take(const DownloadOrder& order, const HttpResult& result)
{
    m_asked.remove(order.job);
    if (IsList(result)) {
        emit Listed(order, FilesOf(result.json));
    } else if (result.status == 401) {
        emit SignedOut();
    } else if (result.status == HttpResult::TooLarge || (result.status >= 400 && !IsPassing(result.status))) {
        emit Refused(order, result.error);
    } else {
        Postpone(order);
    }
}

void OrderDesk::Postpone(const DownloadOrder& order)
{
    try {
        m_store->PostponeOrder(m_access.owner, order.job);
    } catch (const std::exception& failure) {
        qWarning("an order of downloads cannot be put off: %s", failure.what());
    }
    const qint64 pause = static_cast<qint64>(m_limits.firstPause) << std::min(m_failures++, mostDoublings);
    m_pause.start(static_cast<int>(std::min<qint64>(pause, m_limits.longestPause)));
}
