#include "farm/slurm/earlier_batches.h"

#include <map>

namespace farm {

std::vector<EarlierBatch> EarlierBatches(const BatchLists& lists, const std::vector<RecordedRun>& runs,
    const SlurmSettings& settings, const JobTypes& types)
{
    std::map<QString, const RecordedRun*> byFolder;
    for (const RecordedRun& run : runs)
        byFolder[run.files.folder] = &run;
    std::vector<EarlierBatch> batches;
    const auto listed = lists.ReadAll();
    for (const auto& [name, folders] : listed) {
        EarlierBatch earlier;
        earlier.batch.name = name;
        for (const QString& folder : folders) {
            const auto known = byFolder.find(folder);
            earlier.batch.runs.push_back(known == byFolder.end() ? RunId() : known->second->id);
            earlier.files.push_back({folder});
            if (known == byFolder.end())
                continue;
            earlier.held.insert(known->second->id);
            earlier.batch.type = known->second->task.type;
            earlier.batch.placement = PlacementFor(settings, types.value(earlier.batch.type));
        }
        earlier.batch.placement.framesPerTask = FramesPerTask(name);
        batches.push_back(earlier);
    }
    return batches;
}

} // namespace farm
