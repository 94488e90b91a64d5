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

/// The fields of the search form. An empty text or a missing range does not filter.
struct VTSearchFields
{
    QString strSequence;
    QString strName;
    QString strType;   ///< the three parts of a `VTJobType` joined by "@"
    QString strStatus; ///< decimal status code
    QString strPool;   ///< the project's pool
    QString strBusinessType;
    std::optional<VTTimeRange> startTime;
    std::optional<VTTimeRange> endTime;
};

/// Makes the job list's conditions from the fields of a search. All values are texts.
QVariantMap VTSearchConditions(const VTSearchFields& fields);

/// Writes conditions in the form of the job-list request: a JSON object as text.
QString VTConditionText(const QVariantMap& mapCondition);

/// Condition text for the jobs of one status.
QString VTStatusConditionText(int nStatus);

/// Condition text for the jobs of a group. For an empty group it names a job that does not exist, since a condition
/// without ids would not filter at all.
QString VTGroupConditionText(const QStringList& lstGuid);
