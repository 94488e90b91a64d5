#pragma once

#include "farm/base/errors.h"

#include <QString>

#include <functional>
#include <vector>

namespace farm {

/// Thrown when a package is refused.
class BadPackage : public Refusal
{
public:
    using Refusal::Refusal;
};

/// Thrown when the work is stopped because the farm is shutting down.
class Interrupted : public std::runtime_error
{
public:
    Interrupted()
        : std::runtime_error("the farm is shutting down")
    {
    }
};

/// A file in a package.
struct PackedFile
{
    QString path;
    qint64 size = 0; // bytes
    QString checksum;
};

/// A file that was unpacked.
struct UnpackedFile : PackedFile
{
    /// The unpacked file on this machine.
    QString file;
};

/// Writes the files of a ZIP archive into the existing `folder` under names of its own choosing. Trusts nothing that
/// the archive says about itself. Throws BadPackage when the archive is refused, Interrupted, and std::runtime_error when
/// a file cannot be written; the caller then removes the files written so far. They may not be on the disk yet when it
/// returns.
/// @param goOn is called before each block; false stops the work.
std::vector<UnpackedFile> Unpack(
    const QString& package, const QString& folder, const std::function<bool()>& goOn);

/// The unpacked size of the package according to its directory, after all checks that need no unpacking.
/// Throws BadPackage.
qint64 AnnouncedBytes(const QString& package);

} // namespace farm
