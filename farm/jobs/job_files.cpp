#include "farm/jobs/job_files.h"

namespace farm {

void AddJobFiles(SQLite::Database& connection, std::int64_t job, const std::vector<JobFile>& files)
{
    for (const JobFile& file : files)
        Execute(connection, "INSERT INTO job_files(job, path, checksum) VALUES (?, ?, ?)", job, file.path,
            file.checksum);
}

std::vector<JobFile> JobFilesOf(SQLite::Database& connection, std::int64_t job)
{
    SQLite::Statement query(connection, "SELECT path, checksum FROM job_files WHERE job = ?");
    Bind(query, job);
    std::vector<JobFile> files;
    while (query.executeStep())
        files.push_back({Text(query.getColumn(0)), Text(query.getColumn(1))});
    return files;
}

} // namespace farm
