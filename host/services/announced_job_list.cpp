#include "host/services/announced_job_list.h"

#include "host/farmclient/event_stream.h"

namespace {

QString IdOf(const QVariant& record)
{
    return record.toMap().value(QStringLiteral("job_id")).toString();
}

} // namespace

void AnnouncedJobList::Set(const QVariantHash& request, const QVariantMap& answer)
{
    m_request = request;
    m_answer = answer;
    m_isNews = false;
}

void AnnouncedJobList::Forget()
{
    m_request.clear();
    m_isNews = false;
}

void AnnouncedJobList::Update(const FarmChanges& changes)
{
    if (changes.list || changes.records.size() < changes.jobs.size()) {
        Forget();
        return;
    }
    QVariantMap data = m_answer.value(QStringLiteral("data")).toMap();
    QVariantList jobs = data.value(QStringLiteral("list")).toList();
    bool isListed = false;
    for (const QJsonValue& record : changes.records) {
        const QVariant announced = record.toVariant();
        for (QVariant& job : jobs) {
            if (IdOf(job) == IdOf(announced)) {
                job = announced;
                isListed = true;
            }
        }
    }
    if (!isListed)
        return;
    data.insert(QStringLiteral("list"), jobs);
    m_answer.insert(QStringLiteral("data"), data);
    m_isNews = true;
}

QVariantMap AnnouncedJobList::Take()
{
    m_isNews = false;
    return m_answer;
}
