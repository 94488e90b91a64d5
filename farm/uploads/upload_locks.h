#pragma once

#include <QSet>
#include <QString>

#include <condition_variable>
#include <mutex>

namespace farm {

/// Lets only one thread at a time work on an upload.
class UploadLocks
{
public:
    /// Holds an upload as long as this object lives.
    class Hold
    {
    public:
        /// Waits at most half a second for the upload. Throws Busy when another thread still holds it.
        Hold(UploadLocks& locks, const QString& id);
        ~Hold();
        Hold(const Hold&) = delete;
        Hold& operator=(const Hold&) = delete;

    private:
        UploadLocks& m_locks;
        QString m_id;
    };

private:
    std::mutex m_mutex;
    std::condition_variable m_released;
    QSet<QString> m_held;
};

} // namespace farm
