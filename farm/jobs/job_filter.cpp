#include "farm/jobs/job_filter.h"

#include "farm/jobs/job_status.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <utility>

namespace farm {

namespace {

// The ids are passed as one JSON array, so that a single placeholder is enough for any number of them.
QString JsonArray(const QStringList& texts)
{
    return QString::fromUtf8(QJsonDocument(QJsonArray::fromStringList(texts)).toJson(QJsonDocument::Compact));
}

void Require(JobFilter& filter, const char* comparison, const std::optional<std::int64_t>& value)
{
    if (value)
        filter.Add(comparison + std::to_string(*value));
}

// The conditions on columns that `jobs` and `job_counts` share. A plus keeps SQLite from using an index on the column:
// jobs are found by their ids or read in the order of their numbers.
JobFilter SharedTerms(std::int64_t account, const JobConditions& conditions)
{
    JobFilter filter {(conditions.ids ? "+account = " : "account = ") + std::to_string(account), {}};
    if (conditions.status)
        Require(filter, "+status = ", conditions.status);
    else
        Require(filter, "+status <> ", static_cast<int>(JobStatus::Deleted));
    Require(filter, "+business = ", conditions.business);
    if (!conditions.type.isEmpty())
        filter.Add("+type = ?", conditions.type);
    if (!conditions.pool.isEmpty())
        filter.Add("+project = (SELECT key FROM projects WHERE pool = ?)", conditions.pool);
    return filter;
}

using Bounds = std::pair<std::optional<std::int64_t>, std::optional<std::int64_t>>;

bool HasEnd(const JobConditions& conditions)
{
    return conditions.endedFrom || conditions.endedTo;
}

} // namespace

void JobFilter::Add(const std::string& term)
{
    where += " AND " + term;
}

void JobFilter::Add(const std::string& term, const QString& text)
{
    Add(term);
    texts.push_back(text.toStdString());
}

void JobFilter::BindTo(SQLite::Statement& statement) const
{
    int index = 0;
    for (const std::string& text : texts)
        statement.bind(++index, text);
}

JobFilter FilterFor(std::int64_t account, const JobConditions& conditions)
{
    JobFilter filter = SharedTerms(account, conditions);
    Require(filter, "number = ", conditions.number);
    Require(filter, "+submitted_at >= ", conditions.submittedFrom);
    Require(filter, "+submitted_at <= ", conditions.submittedTo);
    Require(filter, "+ended_at >= ", conditions.endedFrom);
    Require(filter, "+ended_at <= ", conditions.endedTo);
    if (!conditions.nameContains.isEmpty())
        filter.Add("instr(folded_name, ?) > 0", conditions.nameContains.toCaseFolded());
    if (conditions.ids)
        filter.Add("id IN (SELECT value FROM json_each(?))", JsonArray(*conditions.ids));
    return filter;
}

CountFilter CountFilterFor(std::int64_t account, const JobConditions& conditions)
{
    CountFilter filter {SharedTerms(account, conditions), "1"};
    if (HasEnd(conditions))
        filter.some.Add("ended = 1");
    const auto within = [&filter](const std::string& times, const Bounds& bounds) {
        if (bounds.first) {
            filter.some.Add("last_" + times + " >= " + std::to_string(*bounds.first));
            filter.all += " AND first_" + times + " >= " + std::to_string(*bounds.first);
        }
        if (bounds.second) {
            filter.some.Add("first_" + times + " <= " + std::to_string(*bounds.second));
            filter.all += " AND last_" + times + " <= " + std::to_string(*bounds.second);
        }
    };
    within("submission", {conditions.submittedFrom, conditions.submittedTo});
    within("end", {conditions.endedFrom, conditions.endedTo});
    return filter;
}

} // namespace farm
