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
    /// The farm is asked again after this time (ms), in case that an announcement was lost.
    static constexpr int LongestTrust = 40000;

    /// @param request that was answered.
    /// @param answer as the window receives it, with code 200.
    void Set(const QVariantHash& request, const QVariantMap& answer);
    /// The list answers no request any more.
    void Forget();

    /// @return whether the list is the farm's, as far as that has announced its changes.
    bool IsKnown() const { return m_age.isValid(); }

    /// Replaces the records of listed jobs. A change that does not say enough makes the list unknown.
    void Update(const FarmChanges& changes);

    /// @param isFollowed whether all changes are being announced.
    /// @return whether the list answers this request without the farm: announcements have changed it since it was last set
    /// or taken, or nothing can have changed since it arrived not long ago.
    bool Answers(const QVariantHash& request, bool isFollowed) const
    {
        const bool isFresh = isFollowed && m_age.isValid() && !m_age.hasExpired(LongestTrust);
        return (m_isNews || isFresh) && m_request == request;
    }
    /// @return the answer with the announced records, which are news no longer.
    QVariantMap Take();

private:
    QVariantHash m_request;
    QVariantMap m_answer;
    QVariantList m_jobs;        // of the answer, with the announced records
    QHash<QString, int> m_rows; // of the jobs in the list, by id
    QElapsedTimer m_age;        // of the answer; invalid when it is not to be given again
    bool m_isNews = false;
};
