#include "farm/uploads/package_reader.h"

#include "farm/base/safe_path.h"
#include "storage/checksum.h"
#include "storage/disk_full.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <limits>
#include <memory>
#include <sys/stat.h>
#include <zip.h>

namespace farm {

namespace {

constexpr zip_int64_t MostEntries = 10000;
// A package is refused as a ZIP bomb if its files take more than this times its size and more than AlwaysAllowedBytes.
constexpr qint64 MostTimesLarger = 200;
constexpr qint64 AlwaysAllowedBytes = qint64 {64} * 1024 * 1024;
constexpr int BlockBytes = 256 * 1024;
constexpr int UnixModeShift = 16; // bits

struct CloseArchive
{
    void operator()(zip_t* archive) const { zip_discard(archive); }
};
struct CloseEntry
{
    void operator()(zip_file_t* entry) const { zip_fclose(entry); }
};
using Archive = std::unique_ptr<zip_t, CloseArchive>;
using Entry = std::unique_ptr<zip_file_t, CloseEntry>;

struct EntryInfo
{
    QString path;
    qint64 size = 0;
};

Archive OpenArchive(const QString& package)
{
    int error = 0;
    Archive archive(zip_open(QFile::encodeName(package).constData(), ZIP_RDONLY, &error));
    if (!archive)
        throw BadPackage("the package is not a ZIP archive");
    return archive;
}

bool IsPlainFile(zip_t* archive, zip_uint64_t index)
{
    zip_uint8_t system = 0;
    zip_uint32_t attributes = 0;
    if (zip_file_get_external_attributes(archive, index, 0, &system, &attributes) != 0)
        return false;
    const mode_t kind = (attributes >> UnixModeShift) & S_IFMT;
    return system != ZIP_OPSYS_UNIX || kind == 0 || kind == S_IFREG;
}

QString PathOf(zip_t* archive, zip_uint64_t index)
{
    const QByteArray name = zip_get_name(archive, index, ZIP_FL_ENC_RAW);
    const QString path = QString::fromUtf8(name);
    if (path.toUtf8() != name || !IsSafePath(path))
        throw BadPackage("an entry of the package has a path that is not allowed");
    return path;
}

EntryInfo InfoOf(zip_t* archive, zip_uint64_t index)
{
    constexpr zip_uint64_t Needed = ZIP_STAT_SIZE | ZIP_STAT_ENCRYPTION_METHOD;
    zip_stat_t stat;
    zip_stat_init(&stat);
    if (zip_stat_index(archive, index, 0, &stat) != 0 || (stat.valid & Needed) != Needed)
        throw BadPackage("an entry of the package cannot be read");
    if (stat.encryption_method != ZIP_EM_NONE)
        throw BadPackage("an entry of the package is encrypted");
    if (!IsPlainFile(archive, index))
        throw BadPackage("an entry of the package is not a plain file");
    if (stat.size > zip_uint64_t(std::numeric_limits<qint64>::max()))
        throw BadPackage("the files of the package are too large");
    return {PathOf(archive, index), qint64(stat.size)};
}

std::vector<EntryInfo> CheckedEntries(zip_t* archive, qint64 packageBytes)
{
    const zip_int64_t count = zip_get_num_entries(archive, 0);
    if (count < 1 || count > MostEntries)
        throw BadPackage("the package is empty or has too many entries");
    const qint64 mostBytes = std::max(packageBytes * MostTimesLarger, AlwaysAllowedBytes);
    std::vector<EntryInfo> entries;
    QSet<QString> paths;
    qint64 bytes = 0;
    for (zip_int64_t index = 0; index < count; ++index) {
        entries.push_back(InfoOf(archive, zip_uint64_t(index)));
        const EntryInfo& entry = entries.back();
        if (paths.contains(entry.path))
            throw BadPackage("two entries of the package have the same path");
        paths.insert(entry.path);
        if (entry.size > mostBytes - bytes)
            throw BadPackage("the files of the package are too large");
        bytes += entry.size;
    }
    return entries;
}

// Calls `take` with one block after another, and never with more bytes than the entry announces.
template <typename Take>
void ReadEntry(zip_t* archive, zip_uint64_t index, qint64 announced, Take take)
{
    const Entry entry(zip_fopen_index(archive, index, 0));
    if (!entry)
        throw BadPackage("an entry of the package cannot be read");
    QByteArray block(BlockBytes, Qt::Uninitialized);
    qint64 total = 0;
    for (;;) {
        const zip_int64_t got = zip_fread(entry.get(), block.data(), zip_uint64_t(block.size()));
        if (got < 0)
            throw BadPackage("an entry of the package is damaged");
        if (got == 0)
            break;
        total += got;
        if (total > announced)
            break;
        take(block.constData(), int(got));
    }
    if (total != announced)
        throw BadPackage("an entry of the package does not have the announced length");
}

UnpackedFile UnpackEntry(zip_t* archive, zip_uint64_t index, const EntryInfo& entry, const QString& target,
    const std::function<bool()>& goOn)
{
    QFile file(target);
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        storage::ThrowWriteError("cannot write an unpacked file", QFileInfo(target).path(), entry.size);
    storage::Sha256 hash;
    ReadEntry(archive, index, entry.size, [&](const char* bytes, int count) {
        if (!goOn())
            throw Interrupted();
        hash.Add(bytes, count);
        if (file.write(bytes, count) != count)
            storage::ThrowWriteError("cannot write an unpacked file", QFileInfo(target).path(), entry.size);
    });
    if (!file.flush())
        storage::ThrowWriteError("cannot write an unpacked file", QFileInfo(target).path(), entry.size);
    return {{entry.path, entry.size, hash.Result()}, target};
}

} // namespace

qint64 AnnouncedBytes(const QString& package)
{
    const Archive archive = OpenArchive(package);
    qint64 bytes = 0;
    for (const EntryInfo& entry : CheckedEntries(archive.get(), QFileInfo(package).size()))
        bytes += entry.size;
    return bytes;
}

std::vector<UnpackedFile> Unpack(
    const QString& package, const QString& folder, const std::function<bool()>& goOn)
{
    const Archive archive = OpenArchive(package);
    std::vector<UnpackedFile> files;
    for (const EntryInfo& entry : CheckedEntries(archive.get(), QFileInfo(package).size())) {
        const zip_uint64_t index = files.size();
        files.push_back(
            UnpackEntry(archive.get(), index, entry, QDir(folder).filePath(QString::number(index)), goOn));
    }
    return files;
}

} // namespace farm
