#include "host/rendercore/submit/scene_package.h"

#include "host/rendercore/submit/submit_text.h"
#include "host/rendercore/task_message.h"
#include "storage/checksum.h"

#include <QFile>
#include <QFileInfo>

#include <zip.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <deque>
#include <memory>

namespace {

using OnBytes = std::function<bool(qint64)>;

// The farm rejects large packages that grow more than two hundredfold when unpacked, so their files are stored.
constexpr qint64 SmallPackage = 64LL * 1024 * 1024; // bytes
constexpr qint64 LargestRatio = 100;

// The highest level takes three times as long and saves a tenth.
constexpr int FastestLevel = 1;

// Whether a file shrinks is tried on samples: pictures and archives usually do not.
constexpr qint64 SampleBytes = 64LL * 1024;
constexpr int Samples = 3;
constexpr double WorthwhileRatio = 0.95;

// A fixed date, 1 January 2000, because archives of the same files must not differ.
constexpr zip_uint16_t DosDate = ((2000 - 1980) << 9) | (1 << 5) | 1;

/// A file that libzip reads.
struct Input
{
    Input(const PackageEntry& entry, const OnBytes& whenRead)
        : file(entry.source)
        , onBytes(whenRead)
    {
    }

    QFile file;
    const OnBytes& onBytes;
    storage::Sha256 hash;
    bool hasEnded = false;
    bool hasFailed = false;
};

zip_int64_t Describe(const Input& input, void* data)
{
    auto* stat = static_cast<zip_stat_t*>(data);
    zip_stat_init(stat);
    stat->size = static_cast<zip_uint64_t>(input.file.size());
    stat->valid = ZIP_STAT_SIZE;
    return sizeof(*stat);
}

zip_int64_t Open(Input& input)
{
    input.hash.Reset();
    input.hasFailed = !input.file.open(QIODevice::ReadOnly);
    return input.hasFailed ? -1 : 0;
}

zip_int64_t Read(Input& input, void* data, zip_uint64_t length)
{
    const qint64 got = input.file.read(static_cast<char*>(data), static_cast<qint64>(length));
    input.hasFailed = got < 0;
    if (got > 0) {
        input.hash.Add(static_cast<const char*>(data), got);
        input.hasEnded = !input.onBytes(got);
    }
    return input.hasEnded ? -1 : got;
}

/// The callback of a libzip source that is read once, from its beginning to its end.
zip_int64_t Serve(void* state, void* data, zip_uint64_t length, zip_source_cmd_t command)
{
    auto& input = *static_cast<Input*>(state);
    switch (command) {
    case ZIP_SOURCE_OPEN:
        return Open(input);
    case ZIP_SOURCE_READ:
        return Read(input, data, length);
    case ZIP_SOURCE_CLOSE:
        input.file.close();
        return 0;
    case ZIP_SOURCE_STAT:
        return Describe(input, data);
    case ZIP_SOURCE_ERROR: {
        const int codes[2] = {input.hasEnded ? ZIP_ER_CANCELLED : ZIP_ER_READ, errno};
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

[[noreturn]] void Fail(const char* sentence, zip_t* archive, const QString& file)
{
    const TaskMessage reason(sentence, {QString::fromUtf8(zip_strerror(archive))});
    throw TaskFailure(TaskMessage::Lines({reason, file}));
}

Archive Create(const QString& path)
{
    int code = 0;
    Archive archive(zip_open(QFile::encodeName(path).constData(), ZIP_CREATE | ZIP_TRUNCATE, &code));
    if (archive)
        return archive;
    zip_error_t error;
    zip_error_init_with_code(&error, code);
    const QString reason = QString::fromUtf8(zip_error_strerror(&error));
    zip_error_fini(&error);
    throw TaskFailure({SubmitText::PackageNotWritten, {reason}});
}

/// Compresses samples of the file. A file that cannot be read is left to the packing, which reports it.
bool Shrinks(const QString& source)
{
    QFile file(source);
    if (!file.open(QIODevice::ReadOnly))
        return true;
    const qint64 last = std::max<qint64>(0, file.size() - SampleBytes);
    const int samples = last > SampleBytes ? Samples : 1;
    int before = 0;
    int after = 0;
    for (int sample = 0; sample < samples; ++sample) {
        file.seek(samples > 1 ? last * sample / (samples - 1) : 0);
        const QByteArray bytes = file.read(SampleBytes);
        before += bytes.size();
        after += qCompress(bytes, FastestLevel).size();
    }
    return after < before * WorthwhileRatio;
}

void Add(zip_t* archive, const PackageEntry& entry, Input& input, Compression compression)
{
    zip_source_t* content = zip_source_function(archive, Serve, &input);
    if (!content)
        Fail(SubmitText::FileUnreadable, archive, entry.source);
    const zip_int64_t index
        = zip_file_add(archive, entry.path.toUtf8().constData(), content, ZIP_FL_ENC_UTF_8);
    if (index < 0) {
        zip_source_free(content);
        Fail(SubmitText::FileNotPacked, archive, entry.source);
    }
    const auto number = static_cast<zip_uint64_t>(index);
    const auto method
        = compression != Compression::None && Shrinks(entry.source) ? ZIP_CM_DEFLATE : ZIP_CM_STORE;
    if (zip_set_file_compression(archive, number, method, FastestLevel) < 0
        || zip_file_set_dostime(archive, number, 0, DosDate, 0) < 0)
        Fail(SubmitText::FileNotPacked, archive, entry.source);
}

bool Pack(
    QVector<PackageEntry>& entries, const QString& target, Compression compression, const OnBytes& onBytes)
{
    std::deque<Input> inputs; // must outlive the archive, which reads them
    Archive archive = Create(target);
    for (const PackageEntry& entry : qAsConst(entries)) {
        Add(archive.get(), entry, inputs.emplace_back(entry, onBytes), compression);
        if (!onBytes(0))
            return false;
    }
    if (zip_close(archive.get()) < 0) {
        for (const Input& input : inputs) {
            if (input.hasEnded)
                return false;
            if (input.hasFailed)
                Fail(SubmitText::FileUnreadable, archive.get(), input.file.fileName());
        }
        Fail(SubmitText::FileNotPacked, archive.get(), entries.constFirst().source);
    }
    // A successful zip_close() has freed the archive.
    (void)archive.release();
    std::transform(inputs.cbegin(), inputs.cend(), entries.cbegin(), entries.begin(),
        [](const Input& input, PackageEntry entry) {
            entry.checksum = input.hash.Result();
            return entry;
        });
    return true;
}

} // namespace

bool PackFiles(
    QVector<PackageEntry>& entries, const QString& archive, Compression compression, const OnBytes& onBytes)
{
    qint64 size = 0;
    for (const PackageEntry& entry : qAsConst(entries))
        size += QFileInfo(entry.source).size();
    if (!Pack(entries, archive, compression, onBytes))
        return false;
    if (size < SmallPackage || QFileInfo(archive).size() * LargestRatio > size)
        return true;
    return Pack(entries, archive, Compression::None, [&onBytes](qint64) { return onBytes(0); });
}
