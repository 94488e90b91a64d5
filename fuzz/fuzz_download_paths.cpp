// Destinations of downloads. The first line of the input names the folder, the second one the file.
#include "fuzz/fuzz_support.h"
#include "host/rendercore/download/download_paths.h"

#include <QDir>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString input = QString::fromUtf8(Bytes(data, size));
    const QString root = QStringLiteral("/downloads");
    for (const int copy : {1, 2, 1000}) {
        const QString path = DownloadPaths::Destination(
            root, input.section(QLatin1Char('\n'), 0, 0), input.section(QLatin1Char('\n'), 1, 1), copy);
        Require(DownloadPaths::Root(path) == root && QDir::cleanPath(path) == path,
            "a download lies in a folder of the download folder");
        const QStringList parts = DownloadPaths::PartFile(path).split(QLatin1Char('/'));
        for (const QString& part : parts)
            Require(part.toUtf8().size() <= 255, "no name is too long for a file system");
    }
    return 0;
}
