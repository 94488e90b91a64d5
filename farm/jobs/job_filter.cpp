#include "farm/jobs/job_filter.h"

#include "farm/jobs/job_status.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace farm {

namespace {

class FilterBuilder
{
public:
    explicit FilterBuilder(std::int64_t account)
        : m_filter {"account = ?", {account}}
    {
    }

    void Require(const char* term, const std::optional<std::int64_t>& value)
    {
        if (value)
            Append(term, *value);
    }

    void Require(const char* term, const QString& value)
    {
        if (!value.isEmpty())
            Append(term, value.toStdString());
    }

    JobFilter Result() const { return m_filter; }

private:
    void Append(const char* term, std::variant<std::int64_t, std::string> value)
    {
        m_filter.where += std::string(" AND ") + term;
        m_filter.values.push_back(std::move(value));
    }

    JobFilter m_filter;
};

// The ids are passed as one JSON array, so that a single placeholder is enough for any number of them.
QString JsonArray(const QStringList& texts)
{
    return QString::fromUtf8(QJsonDocument(QJsonArray::fromStringList(texts)).toJson(QJsonDocument::Compact));
}

} // namespace

JobFilter FilterFor(std::int64_t account, const JobConditions& conditions)
{
    FilterBuilder builder(account);
    builder.Require("number = ?", conditions.number);
    builder.Require("instr(folded_name, ?) > 0", conditions.nameContains.toCaseFolded());
    builder.Require("type = ?", conditions.type);
    if (conditions.status)
        builder.Require("status = ?", conditions.status);
    else
        builder.Require("status <> ?", static_cast<std::int64_t>(JobStatus::Deleted));
    builder.Require("project = (SELECT p.key FROM projects p WHERE p.account = jobs.account AND p.pool = ?)",
        conditions.pool);
    builder.Require("business = ?", conditions.business);
    if (conditions.ids)
        builder.Require("id IN (SELECT value FROM json_each(?))", JsonArray(*conditions.ids));
    builder.Require("submitted_at >= ?", conditions.submittedFrom);
    builder.Require("submitted_at <= ?", conditions.submittedTo);
    builder.Require("ended_at >= ?", conditions.endedFrom);
    builder.Require("ended_at <= ?", conditions.endedTo);
    return builder.Result();
}

} // namespace farm
