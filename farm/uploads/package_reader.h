#pragma once

#include <QString>

#include <functional>
#include <stdexcept>
#include <vector>

namespace farm {

/// A package is refused. The text is for its sender.
class BadPackage : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// The work was given up because the farm ends.
class Interrupted : public std::runtime_error
{
public:
    Interrupted()
        : std::runtime_error("the farm is ending")
    {
    }
};

/// A file that came out of a package.
struct UnpackedFile
{
    QString path;
    qint64 size = 0;
    QString checksum;
    /// Where its content is now.
    QString file;
};

/// Takes the files of a ZIP archive out into `folder`, which exists, under names of the reader's own. Nothing that the
/// archive says of itself is believed. Throws BadPackage when it is refused, Interrupted, and std::runtime_error when
/// files cannot be written; what has been taken out by then is the caller's to remove.
/// @param goOn is asked now and then; false gives the work up.
std::vector<UnpackedFile> Unpack(
    const QString& package, const QString& folder, const std::function<bool()>& goOn);

/// What the files of the package will take, as it announces, after all checks that need no unpacking. Throws BadPackage.
qint64 AnnouncedBytes(const QString& package);

} // namespace farm
