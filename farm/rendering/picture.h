#pragma once

#include <QString>

#include <cstdint>

namespace farm {

/// A finished frame.
struct Picture
{
    /// The file's name in the job's folder.
    QString name;
    std::int64_t size = 0; // bytes
    QString checksum;
};

} // namespace farm
