#include "farm/base/disk_reserve.h"

#include "storage/disk_full.h"
#include "storage/durable_file.h"

#include <cerrno>

namespace farm {

DiskReserve::DiskReserve(const QString& folder, std::int64_t bytes)
    : m_folder(folder)
    , m_bytes(bytes)
{
}

void DiskReserve::Require(std::int64_t more) const
{
    if (m_bytes > 0 && storage::LacksRoom(m_folder, m_bytes + more))
        throw storage::DiskError("the disk has no more space than its reserve", ENOSPC);
}

} // namespace farm
