#pragma once

#include <QString>

namespace farm {

/// Holds a data folder for one farm at a time.
/// The system lets go of it when the process ends, however it ends.
class DataLock
{
public:
    /// Waits up to `waitMs` for a farm that is just ending.
    /// Throws std::runtime_error when the folder stays taken.
    DataLock(const QString& folder, int waitMs);
    ~DataLock();

    DataLock(const DataLock&) = delete;
    DataLock& operator=(const DataLock&) = delete;

private:
    int m_file = -1;
};

} // namespace farm
