#include "host/farmclient/event_stream.h"

#include "json/read_object.h"

#include <utility>

QByteArrayList EventStream::Read(const QByteArray& bytes)
{
    QByteArrayList events;
    for (const char byte : bytes) {
        const bool isSecondOfEnd = std::exchange(m_endsWithReturn, byte == '\r') && byte == '\n';
        if (m_isTooLong || isSecondOfEnd)
            continue;
        if (byte == '\r' || byte == '\n')
            ReadLine(events);
        else
            m_line += byte;
        m_isTooLong = m_line.size() > Longest || m_data.size() > Longest;
    }
    return events;
}

void EventStream::ReadLine(QByteArrayList& events)
{
    const QByteArray line = std::exchange(m_line, {});
    if (line.isEmpty()) {
        if (m_hasData)
            events.append(std::exchange(m_data, {}));
        m_hasData = false;
        return;
    }
    const int colon = line.indexOf(':');
    if ((colon < 0 ? line : line.left(colon)) != "data")
        return;
    if (std::exchange(m_hasData, true))
        m_data += '\n';
    const QByteArray value = colon < 0 ? QByteArray() : line.mid(colon + 1);
    m_data += value.startsWith(' ') ? value.mid(1) : value;
}

FarmChanges FarmChanges::Read(const QByteArray& event)
{
    const QJsonObject object = ReadJsonObject(event).object;
    FarmChanges changes;
    const QJsonArray jobs = object.value(QLatin1String("jobs")).toArray();
    for (const QJsonValue& job : jobs)
        changes.jobs.append(job.toString());
    changes.list = object.value(QLatin1String("list")).toBool();
    changes.account = object.value(QLatin1String("account")).toObject();
    changes.money = !changes.account.isEmpty();
    changes.records = object.value(QLatin1String("records")).toArray();
    return changes;
}
