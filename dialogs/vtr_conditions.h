#pragma once

#include <QStringList>
#include <QVariantMap>

#include <optional>

/// Both bounds of a time range, as the user sees them.
struct VTTimeRange
{
    QString strMin;
    QString strMax;
};

/// What the search form holds; an empty text or a missing range does not filter.
struct VTSearchFields
{
    QString strSequence;
    QString strName;
    QString strType;   ///< the job type's three parts joined by "@"
    QString strStatus; ///< decimal status code
    QString strPool;   ///< the project's pool
    QString strBusinessType;
    std::optional<VTTimeRange> startTime;
    std::optional<VTTimeRange> endTime;
};

/// The job list's conditions of one search; all values are texts.
QVariantMap VTSearchConditions(const VTSearchFields& fields);

/// Conditions as the job-list request carries them: a JSON object as text.
QString VTConditionText(const QVariantMap& mapCondition);

/// Condition text for the jobs of one status.
QString VTStatusConditionText(int nStatus);

/// Condition text for the jobs of a group. A group without jobs asks for a job that does not exist, since a condition
/// without identities would not filter at all.
QString VTGroupConditionText(const QStringList& lstGuid);
