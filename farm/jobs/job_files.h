#pragma once

#include "farm/base/schema.h"

#include <vector>

namespace farm {

/// A file of a job's scene.
struct JobFile
{
    /// Relative to the folder of the scene.
    QString path;
    QString checksum;
};

/// Call it inside a Database::Write().
void AddJobFiles(SQLite::Database& connection, std::int64_t job, const std::vector<JobFile>& files);
std::vector<JobFile> JobFilesOf(SQLite::Database& connection, std::int64_t job);

} // namespace farm
