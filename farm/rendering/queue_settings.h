#pragma once

#include <QMap>
#include <QString>

#include <chrono>

namespace farm {

struct QueueSettings
{
    /// Core time that an account used this long ago counts half. An account that comes to a busy farm has the first claim
    /// to it for about this time.
    std::chrono::seconds useHalfLife {3600};
    /// Before the second attempt at a frame; twice as long before the third.
    std::chrono::seconds retryPause {30};
    /// The most frames of an account that are rendered at a time; 0 for any number.
    int framesPerAccount = 0;
    /// The same for job types that have such a limit.
    QMap<QString, int> framesPerType = {};
};

} // namespace farm
