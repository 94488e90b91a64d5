#pragma once

#include <QMap>
#include <QString>

#include <chrono>

namespace farm {

struct QueueSettings
{
    /// Core time that an account used this long ago counts half. An account that is new to a busy farm goes first for
    /// about this time.
    std::chrono::seconds useHalfLife {3600};
    /// The pause before the second attempt at a frame; it is twice as long before the third.
    std::chrono::seconds retryPause {30};
    /// The most frames of an account that are rendered at a time; 0 for any number.
    int framesPerAccount = 0;
    /// The same limit for job types; types without an entry have none.
    QMap<QString, int> framesPerType = {};
};

} // namespace farm
