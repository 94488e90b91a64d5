#include "farm/base/disk_reserve.h"

#include "storage/disk_full.h"
#include "storage/durable_file.h"

#include <cerrno>

namespace farm {

DiskReserve::DiskReserve(const QString& folder, std::int64_t bytes)
    : m_folder(folder)
{
    Change(bytes);
}

void DiskReserve::Require(std::int64_t more) const
{
    const std::int64_t bytes = *m_bytes;
    if (bytes > 0 && storage::LacksRoom(m_folder, bytes + more))
        throw storage::DiskError("the disk has no more space than its reserve", ENOSPC);
}

} // namespace farm
