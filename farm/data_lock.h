#pragma once

#include <QString>

namespace farm {

/// Reserves a data folder for one farm. The operating system releases it when the process ends, even by a crash.
class DataLock
{
public:
    /// Waits up to `waitMs` milliseconds for a farm that is shutting down.
    /// Throws std::runtime_error when another farm uses the folder.
    DataLock(const QString& folder, int waitMs);
    ~DataLock();

    DataLock(const DataLock&) = delete;
    DataLock& operator=(const DataLock&) = delete;

private:
    int m_file = -1;
};

} // namespace farm
