#pragma once

#include "farm/base/schema.h"

#include <vector>

namespace farm {

/// A file of a job's scene.
struct JobFile
{
    /// In the folder of the scene.
    QString path;
    QString checksum;
};

/// In one of the connection's transactions.
void AddJobFiles(SQLite::Database& connection, std::int64_t job, const std::vector<JobFile>& files);
std::vector<JobFile> JobFilesOf(SQLite::Database& connection, std::int64_t job);

} // namespace farm
