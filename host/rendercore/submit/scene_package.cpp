#include "host/rendercore/submit/scene_package.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>

#include <zip.h>

#include <cerrno>
#include <cstring>
#include <memory>
#include <stdexcept>

namespace {

constexpr int BlockBytes = 1024 * 1024;

// The farm rejects large files that grow more than a hundredfold when unpacked, so these are stored uncompressed.
constexpr qint64 SmallFile = 64LL * 1024 * 1024; // bytes
constexpr qint64 LargestRatio = 100;

// A fixed date, 1 January 2000, because archives of the same file must not differ.
constexpr zip_uint16_t DosDate = ((2000 - 1980) << 9) | (1 << 5) | 1;

/// A file that libzip reads.
struct Input
{
    QFile file;
    const std::function<bool(qint64)>& onBytes;
    bool ended = false;
};

zip_int64_t Describe(const Input& input, void* data)
{
    auto* stat = static_cast<zip_stat_t*>(data);
    zip_stat_init(stat);
    stat->size = static_cast<zip_uint64_t>(input.file.size());
    stat->valid = ZIP_STAT_SIZE;
    return sizeof(*stat);
}

zip_int64_t Read(Input& input, void* data, zip_uint64_t length)
{
    const qint64 got = input.file.read(static_cast<char*>(data), static_cast<qint64>(length));
    if (got > 0 && !input.onBytes(got))
        input.ended = true;
    return input.ended ? -1 : got;
}

/// The callback of a libzip source that is read once, from its beginning to its end.
zip_int64_t Serve(void* state, void* data, zip_uint64_t length, zip_source_cmd_t command)
{
    auto& input = *static_cast<Input*>(state);
    switch (command) {
    case ZIP_SOURCE_OPEN:
        return input.file.open(QIODevice::ReadOnly) ? 0 : -1;
    case ZIP_SOURCE_READ:
        return Read(input, data, length);
    case ZIP_SOURCE_CLOSE:
        input.file.close();
        return 0;
    case ZIP_SOURCE_STAT:
        return Describe(input, data);
    case ZIP_SOURCE_ERROR: {
        const int codes[2] = {input.ended ? ZIP_ER_CANCELLED : ZIP_ER_READ, errno};
        std::memcpy(data, codes, sizeof(codes));
        return sizeof(codes);
    }
    case ZIP_SOURCE_FREE:
        return 0;
    case ZIP_SOURCE_SUPPORTS:
        return ZIP_SOURCE_SUPPORTS_READABLE;
    default:
        return -1;
    }
}

struct Discard
{
    void operator()(zip_t* archive) const { zip_discard(archive); }
};
using Archive = std::unique_ptr<zip_t, Discard>;

struct CloseFile
{
    void operator()(zip_file_t* file) const { zip_fclose(file); }
};

[[noreturn]] void Fail(const char* sentence, zip_t* archive)
{
    throw std::runtime_error(std::string(sentence) + ": " + zip_strerror(archive));
}

Archive Open(const QString& path, int flags)
{
    int code = 0;
    Archive archive(zip_open(QFile::encodeName(path).constData(), flags, &code));
    if (archive)
        return archive;
    zip_error_t error;
    zip_error_init_with_code(&error, code);
    const std::string reason = zip_error_strerror(&error);
    zip_error_fini(&error);
    throw std::runtime_error("A package cannot be opened: " + reason);
}

bool Pack(const QString& source, const QString& path, const QString& target, zip_int32_t method,
    const std::function<bool(qint64)>& onBytes)
{
    Input input {QFile(source), onBytes}; // must outlive the archive, which reads it
    Archive archive = Open(target, ZIP_CREATE | ZIP_TRUNCATE);
    zip_source_t* content = zip_source_function(archive.get(), Serve, &input);
    if (!content)
        Fail("A file cannot be read", archive.get());
    const zip_int64_t index
        = zip_file_add(archive.get(), path.toUtf8().constData(), content, ZIP_FL_ENC_UTF_8);
    if (index < 0) {
        zip_source_free(content);
        Fail("A file cannot be packed", archive.get());
    }
    const auto entry = static_cast<zip_uint64_t>(index);
    if (zip_set_file_compression(archive.get(), entry, method, 0) < 0
        || zip_file_set_dostime(archive.get(), entry, 0, DosDate, 0) < 0)
        Fail("A file cannot be packed", archive.get());
    if (zip_close(archive.get()) < 0) {
        if (input.ended)
            return false;
        Fail("A file cannot be packed", archive.get());
    }
    // A successful zip_close() has freed the archive.
    (void)archive.release();
    return true;
}

} // namespace

bool PackFile(const QString& source, const QString& path, const QString& archive,
    const std::function<bool(qint64)>& onBytes)
{
    if (!Pack(source, path, archive, ZIP_CM_DEFLATE, onBytes))
        return false;
    const qint64 size = QFileInfo(source).size();
    if (size < SmallFile || QFileInfo(archive).size() * LargestRatio > size)
        return true;
    return Pack(source, path, archive, ZIP_CM_STORE, [&onBytes](qint64) { return onBytes(0); });
}

QString PackedChecksum(const QString& archive, const std::function<bool(qint64)>& onBytes)
{
    const Archive opened = Open(archive, ZIP_RDONLY);
    const std::unique_ptr<zip_file_t, CloseFile> file(zip_fopen_index(opened.get(), 0, 0));
    if (!file)
        Fail("A package cannot be read", opened.get());
    QCryptographicHash hash(QCryptographicHash::Sha256);
    QByteArray block(BlockBytes, Qt::Uninitialized);
    for (;;) {
        const zip_int64_t got = zip_fread(file.get(), block.data(), static_cast<zip_uint64_t>(block.size()));
        if (got < 0)
            Fail("A package cannot be read", opened.get());
        if (got == 0)
            return QString::fromLatin1(hash.result().toHex());
        hash.addData(block.constData(), static_cast<int>(got));
        if (!onBytes(got))
            return {};
    }
}
