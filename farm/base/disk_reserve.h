#pragma once

#include <QString>

#include <cstdint>

namespace farm {

/// Keeps some space of the data folder's disk free: below it the farm takes nothing new, but people can still sign in,
/// delete and download, which the database needs some space for.
class DiskReserve
{
public:
    /// No reserve.
    DiskReserve() = default;
    DiskReserve(const QString& folder, std::int64_t bytes);

    /// Throws storage::DiskError for a full disk when so many more bytes would leave less than the reserve.
    void Require(std::int64_t more = 0) const;

private:
    QString m_folder;
    std::int64_t m_bytes = 0;
};

} // namespace farm
