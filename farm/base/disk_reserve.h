#pragma once

#include <QString>

#include <atomic>
#include <cstdint>
#include <memory>

namespace farm {

/// Keeps some space on the data folder's disk free. When less is left, the farm takes nothing new, but people can still
/// sign in, delete and download, for which the database needs some space.
class DiskReserve
{
public:
    /// Keeps no reserve.
    DiskReserve() = default;
    DiskReserve(const QString& folder, std::int64_t bytes);

    /// Throws storage::DiskError for a full disk when this many more bytes would leave less than the reserve.
    void Require(std::int64_t more = 0) const;
    /// Keeps this many bytes free from now on. Holds for all copies of this object. Thread-safe.
    void Change(std::int64_t bytes) { *m_bytes = bytes; }

private:
    QString m_folder;
    std::shared_ptr<std::atomic<std::int64_t>> m_bytes = std::make_shared<std::atomic<std::int64_t>>(0);
};

} // namespace farm
