// Packages that clients upload.
#include "farm/uploads/package_reader.h"
#include "fuzz/fuzz_support.h"

#include <QFileInfo>
#include <QTemporaryDir>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QTemporaryDir folder;
    const QString package = folder.filePath(QStringLiteral("package.zip"));
    WriteFile(package, Bytes(data, size));
    try {
        const qint64 announced = farm::AnnouncedBytes(package);
        qint64 unpacked = 0;
        for (const farm::UnpackedFile& file : farm::Unpack(package, folder.path(), [] { return true; })) {
            Require(QFileInfo(file.file).path() == folder.path(), "files are unpacked into the folder");
            Require(QFileInfo(file.file).size() == file.size, "files have the stated sizes");
            unpacked += file.size;
        }
        Require(unpacked == announced, "the files take what the archive announces");
    } catch (const farm::BadPackage&) {
    }
    return 0;
}
