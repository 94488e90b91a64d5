#pragma once

#include "farm/base/change_feed.h"
#include "farm/base/schema.h"

#include <QMap>
#include <QStringList>

namespace farm {

/// The reasons why all jobs of a type wait although its renderer has not failed. Owners and administrators see them in
/// place of the jobs' own messages.
class Hindrances
{
public:
    Hindrances(Database& database, ChangeFeed& feed);

    /// Records why the types in `byType` wait, each reason as a clause without a full stop; nothing hinders the others.
    /// Logs and announces what has changed.
    void Set(const QMap<QString, QString>& byType);
    /// The types of all open jobs. Quick, however many there are.
    QStringList OpenTypes();

private:
    Database& m_database;
    ChangeFeed& m_feed;
    QMap<QString, QString> m_known;
};

} // namespace farm
