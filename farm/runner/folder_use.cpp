#include "farm/runner/folder_use.h"

#include <QByteArray>
#include <QFile>

#include <algorithm>
#include <fts.h>
#include <sys/stat.h>
#include <unistd.h>

namespace farm {

namespace {

/// Walks through the folders by changing into each, so that neither long paths nor links put in the way matter.
/// @param visit gets each entry once and returns whether to go on.
template <typename Visit>
void Walk(const QString& path, const Visit& visit)
{
    QByteArray name = QFile::encodeName(path);
    char* const paths[] = {name.data(), nullptr};
    FTS* const walk = ::fts_open(paths, FTS_PHYSICAL | FTS_XDEV, nullptr);
    if (walk == nullptr)
        return;
    const FTSENT* entry = nullptr;
    while ((entry = ::fts_read(walk)) != nullptr) {
        const bool wasVisited = entry->fts_info == FTS_DP;
        if (!wasVisited && !visit(*entry))
            break;
    }
    ::fts_close(walk);
}

bool IsFile(const FTSENT& entry)
{
    return entry.fts_info == FTS_F || entry.fts_info == FTS_DEFAULT || entry.fts_info == FTS_SL
        || entry.fts_info == FTS_SLNONE;
}

/// The space of a file under one of its names: its size without holes, divided among all its names.
std::int64_t BytesOf(const struct stat& file)
{
    constexpr std::int64_t BlockSize = 512; // the unit of st_blocks, whatever the disk's block size
    const std::int64_t bytes = std::min<std::int64_t>(file.st_size, file.st_blocks * BlockSize);
    return bytes / std::max<std::int64_t>(1, std::int64_t(file.st_nlink));
}

} // namespace

FolderUse MeasureFolder(const QString& path)
{
    FolderUse use;
    Walk(path, [&use](const FTSENT& entry) {
        if (IsFile(entry))
            use.bytes += BytesOf(*entry.fts_statp);
        return ++use.entries <= MostEntries;
    });
    return use;
}

void RemoveFiles(const QString& path)
{
    Walk(path, [](const FTSENT& entry) {
        if (IsFile(entry))
            ::unlink(entry.fts_accpath);
        return true;
    });
}

} // namespace farm
