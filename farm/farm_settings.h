#pragma once

#include "farm/base/money.h"
#include "farm/http/request_gate.h"
#include "farm/rendering/queue_settings.h"
#include "farm/slurm/slurm_settings.h"

#include <QString>
#include <QStringList>

#include <chrono>
#include <cstdint>
#include <optional>

namespace farm {

struct FarmSettings
{
    /// Contains the database and all files; created when it is missing.
    QString dataFolder;
    /// Contains the scenes that come with the farm.
    QString sceneFolder;
    QString jobTypesFile;
    QString address = QStringLiteral("127.0.0.1");
    /// 0 chooses a free port.
    int port = 0;
    /// The number of frames that are rendered at a time.
    int slotCount = 1;
    /// Renders on a Slurm cluster instead of this machine. The folder is in the data folder.
    std::optional<SlurmSettings> slurm;
    /// The time after which the scheduler looks at the jobs even if nothing has told it of a change.
    std::chrono::milliseconds lookInterval {5000};
    Micros pricePerCoreSecond = DefaultPrice;
    /// See QueueSettings.
    std::chrono::seconds useHalfLife = QueueSettings().useHalfLife;
    std::chrono::seconds retryPause = QueueSettings().retryPause;
    int framesPerAccount = 0;
    std::int64_t sessionSeconds = std::int64_t {7} * 24 * 3600;
    /// Creates the demo accounts in an empty farm and keeps "demo" supplied with jobs.
    bool demo = true;
    /// The most bytes that the contents and unfinished uploads of an account may take, unless it has a quota of its own.
    std::int64_t quota = std::int64_t {20} * 1024 * 1024 * 1024;
    /// The farm takes nothing new when its disk would have fewer bytes left than this; 0 for no reserve.
    std::int64_t diskReserve = std::int64_t {1} << 30;
    /// The time for which contents that no job needs are kept.
    std::chrono::hours keepContents {24 * 7};
    /// The time for which entries of the audit are kept.
    std::chrono::hours keepAudit {24 * 365};
    /// Uses a database that is older than the other files in the data folder, or another farm's.
    bool acceptDatabase = false;
    /// Ignores a lock of the data folder that another machine holds.
    bool takeOver = false;
    /// The user of this machine who runs the renderers of a farm that runs as root; empty for the farm's own user.
    QString rendererUser;
    RequestLimits limits;
    /// The addresses of proxies through which clients come.
    QStringList proxies;
};

} // namespace farm
