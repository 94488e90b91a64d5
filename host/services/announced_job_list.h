#pragma once

#include <QHash>
#include <QVariantHash>
#include <QVariantList>
#include <QVariantMap>

struct FarmChanges;

/// The last list of jobs that the farm sent, kept up to date by the records that the farm announces, so that a client
/// need not ask for the list whenever a frame is finished.
class AnnouncedJobList
{
public:
    /// @param request that was answered.
    /// @param answer as the window receives it, with code 200.
    void Set(const QVariantHash& request, const QVariantMap& answer);
    /// The list answers no request any more.
    void Forget();

    /// Replaces the records of listed jobs. A change that does not say enough makes the list unknown.
    void Update(const FarmChanges& changes);

    /// @return whether announcements have changed the list since it was last set or taken, and it answers this request.
    bool IsNewsFor(const QVariantHash& request) const { return m_isNews && m_request == request; }
    /// @return the answer with the announced records, which are news no longer.
    QVariantMap Take();

private:
    QVariantHash m_request;
    QVariantMap m_answer;
    QVariantList m_jobs;        // of the answer, with the announced records
    QHash<QString, int> m_rows; // of the jobs in the list, by id
    bool m_isNews = false;
};
