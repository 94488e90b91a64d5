#include "host/frames/picture_fetch.h"

#include "host/farmclient/farm_numbers.h"
#include "host/farmclient/http_result.h"

#include <QNetworkReply>

namespace {

constexpr int AttemptTime = 15000;        // ms without progress
constexpr int LongestRefusal = 64 * 1024; // bytes of a body that says why there is no picture

bool IsPicture(const QNetworkReply& reply)
{
    return reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt() == HttpStatus::Ok;
}

} // namespace

PictureFetch::PictureFetch(QNetworkReply* reply, const QString& file, qint64 size, QObject* parent)
    : QObject(parent)
    , m_reply(reply)
    , m_part(file + QLatin1String(".part"))
    , m_file(file)
    , m_size(size)
{
    m_deadline.setSingleShot(true);
    connect(&m_deadline, &QTimer::timeout, this, [this] { End(tr("The server did not answer in time.")); });
    if (!reply || !m_part.open(QIODevice::WriteOnly)) {
        m_fault = reply ? tr("The temporary folder cannot be written.")
                        : tr("The farm is not running at the moment.");
        QMetaObject::invokeMethod(this, "HandleFinished", Qt::QueuedConnection);
        return;
    }
    connect(reply, &QNetworkReply::readyRead, this, &PictureFetch::Collect);
    connect(reply, &QNetworkReply::finished, this, &PictureFetch::HandleFinished);
    m_deadline.start(AttemptTime);
}

PictureFetch::~PictureFetch()
{
    Discard(m_reply, this);
    if (m_part.isOpen())
        m_part.remove();
}

void PictureFetch::Collect()
{
    m_deadline.start();
    const QByteArray bytes = m_reply->readAll();
    if (!IsPicture(*m_reply))
        m_refusal += bytes.left(LongestRefusal - m_refusal.size());
    else if (m_part.pos() + bytes.size() > m_size || m_part.write(bytes) != bytes.size())
        End(tr("The picture has changed on the farm."));
}

void PictureFetch::HandleFinished()
{
    if (!m_fault.isEmpty()) {
        End(m_fault);
        return;
    }
    Collect();
    if (!m_reply)
        return;
    if (m_reply->error() != QNetworkReply::NoError || !IsPicture(*m_reply))
        End(HttpResult::Of(*m_reply, m_refusal).error);
    else if (m_part.pos() != m_size)
        End(tr("The picture has changed on the farm."));
    else if (!m_part.flush() || !m_part.rename(m_file))
        End(tr("The temporary folder cannot be written."));
    else
        End({});
}

void PictureFetch::End(const QString& fault)
{
    m_deadline.stop();
    Discard(m_reply, this);
    deleteLater();
    emit Done(fault);
}
