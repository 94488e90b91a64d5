#include "host/services/announced_job_list.h"

#include "host/farmclient/event_stream.h"

namespace {

const QString Data = QStringLiteral("data");
const QString List = QStringLiteral("list");
const QString Id = QStringLiteral("job_id");

} // namespace

void AnnouncedJobList::Set(const QVariantHash& request, const QVariantMap& answer)
{
    m_request = request;
    m_answer = answer;
    m_jobs = answer.value(Data).toMap().value(List).toList();
    m_rows.clear();
    for (int row = 0; row < m_jobs.size(); ++row)
        m_rows.insert(m_jobs.at(row).toMap().value(Id).toString(), row);
    m_age.start();
    m_isNews = false;
}

void AnnouncedJobList::Forget()
{
    m_request.clear();
    m_age.invalidate();
    m_isNews = false;
}

void AnnouncedJobList::Update(const FarmChanges& changes)
{
    if (changes.list || changes.records.size() < changes.jobs.size()) {
        Forget();
        return;
    }
    for (const QJsonValue& record : changes.records) {
        const int row = m_rows.value(record[Id].toString(), -1);
        if (row < 0)
            continue;
        m_jobs[row] = record.toVariant();
        m_isNews = true;
    }
}

QVariantMap AnnouncedJobList::Take()
{
    m_isNews = false;
    QVariantMap data = m_answer.value(Data).toMap();
    data.insert(List, m_jobs);
    m_answer.insert(Data, data);
    return m_answer;
}
