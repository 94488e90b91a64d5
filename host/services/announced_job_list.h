#pragma once

#include <QElapsedTimer>
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
    /// The farm is asked again after this time (ms), in case an announcement was lost.
    static constexpr int LongestTrust = 40000;

    /// @param request is the one that was answered.
    /// @param answer is passed as the window receives it, with code 200.
    void Set(const QVariantHash& request, const QVariantMap& answer);
    /// Forgets the list, so that it answers no request.
    void Forget();

    /// @return whether the list is up to date, provided that the farm has announced all changes.
    bool IsKnown() const { return m_age.isValid(); }

    /// Replaces the records of listed jobs. A change without the records makes the list unknown.
    void Update(const FarmChanges& changes);

    /// @param isFollowed whether all changes are being announced.
    /// @return whether the list answers this request without the farm: either announcements have changed it since it
    /// was last set or taken, or it arrived not long ago and nothing can have changed since.
    bool Answers(const QVariantHash& request, bool isFollowed) const
    {
        const bool isFresh = isFollowed && m_age.isValid() && !m_age.hasExpired(LongestTrust);
        return (m_isNews || isFresh) && m_request == request;
    }
    /// @return the answer with the announced records, which count as delivered from then on.
    QVariantMap Take();

private:
    QVariantHash m_request;
    QVariantMap m_answer;
    QVariantList m_jobs;        // the answer's jobs, with the announced records
    QHash<QString, int> m_rows; // rows of the jobs in the list, by id
    QElapsedTimer m_age;        // age of the answer; invalid when the answer must not be used again
    bool m_isNews = false;
};
