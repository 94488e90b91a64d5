#pragma once

#include "farm/rendering/fair_turns.h"
#include "farm/rendering/frame_choice.h"
#include "farm/rendering/frame_task.h"

#include <map>
#include <optional>
#include <set>
#include <vector>

namespace farm {

struct QueueSettings;
class TypeHealth;
class WorkLoad;

/// The frames that the scheduler asks for.
struct FrameDemand
{
    /// The job types that can be rendered now.
    QStringList types;
    std::size_t most = 1;
    /// Jobs whose frames are not rendered now.
    std::set<std::int64_t> paused = {};
};

/// Selects frames, account by account in turn. A type that is stopped gets at most one, as a trial. Use it inside one
/// Database::Read().
class FrameSelection
{
public:
    struct Dependencies
    {
        const QueueSettings& settings;
        const RecentUse& use;
        TypeHealth& health;
        WorkLoad& load;
    };

    /// @param taken are the frames in work, to which the selected ones are added.
    FrameSelection(SQLite::Database& connection, const Dependencies& dependencies, const FrameDemand& demand,
        std::set<FrameKey>& taken, std::int64_t now);

    /// Nothing when no further frame can be rendered now.
    std::optional<FrameTask> Next();

private:
    void FindContenders();
    bool HasRoom(const QString& type) const;
    std::optional<FrameKey> FindTrial(const QString& type);
    std::optional<FrameKey> FindFrame(
        FrameChoice& choice, std::vector<Contender>& contenders, const QStringList& types) const;
    FrameTask Select(const FrameKey& frame);
    const FrameTask& TaskOf(const FrameKey& frame);

    SQLite::Database& m_connection;
    Dependencies m_deps;
    const std::set<std::int64_t>& m_paused;
    std::set<FrameKey>& m_taken;
    std::int64_t m_now;
    QStringList m_types;
    QStringList m_stoppedTypes; ///< stopped types that may get a trial
    /// The accounts that may get another frame.
    std::vector<Contender> m_contenders;
    FrameChoice m_choice;
    /// For each job, the task of one of its frames.
    std::map<std::int64_t, FrameTask> m_tasks;
};

} // namespace farm
