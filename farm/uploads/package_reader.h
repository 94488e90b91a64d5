#pragma once

#include "farm/base/errors.h"

#include <QString>

#include <functional>
#include <vector>

namespace farm {

/// A package is refused as a whole.
class BadPackage : public Refusal
{
public:
    using Refusal::Refusal;
};

/// The work was given up because the farm is ending.
class Interrupted : public std::runtime_error
{
public:
    Interrupted()
        : std::runtime_error("the farm is ending")
    {
    }
};

/// A file that came in a package.
struct PackedFile
{
    QString path;
    qint64 size = 0; // bytes
    QString checksum;
};

/// A file that was taken out of a package.
struct UnpackedFile : PackedFile
{
    /// The file on this machine that holds the content.
    QString file;
};

/// Writes the files of a ZIP archive into the existing `folder` under names of the reader's own. Trusts nothing that the
/// archive says about itself. Throws BadPackage when the archive is refused, Interrupted, and std::runtime_error when a
/// file cannot be written; the caller removes what was written by then.
/// @param goOn is asked before each block; false gives the work up.
std::vector<UnpackedFile> Unpack(
    const QString& package, const QString& folder, const std::function<bool()>& goOn);

/// The bytes that the files of the package will take by its own account, after all checks that need no unpacking.
/// Throws BadPackage.
qint64 AnnouncedBytes(const QString& package);

} // namespace farm
