#pragma once

#include <QByteArray>
#include <QString>

namespace farm {

/// Reserves a data folder for one farm. The operating system releases the lock when the process ends, even in a crash.
/// Only a lock on a shared disk can remain, when the machine that held it has failed; it has to be taken over.
class DataLock
{
public:
    /// Waits up to `waitMs` milliseconds for a farm that is shutting down.
    /// Throws std::runtime_error, which names the holder, when another farm uses the folder.
    /// @param takeOver ignores a lock that another machine holds.
    DataLock(const QString& folder, int waitMs, bool takeOver = false);
    ~DataLock();

    DataLock(const DataLock&) = delete;
    DataLock& operator=(const DataLock&) = delete;

private:
    void Open();
    bool Wait(int waitMs) const;
    void WriteHolder() const;
    QString Holder() const;

    QByteArray m_path;
    int m_file = -1;
};

} // namespace farm
