#include "farm/uploads/content_copy.h"

#include "storage/checksum.h"
#include "storage/durable_file.h"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace farm {

namespace {

constexpr std::size_t Block = 1 << 20; // bytes
// A write cannot be interrupted, so no more than this is written at a time.
constexpr std::size_t SyncInterval = std::size_t {32} << 20; // bytes

/// Closes an open file at the end of the scope.
class Descriptor
{
public:
    Descriptor(const QString& path, int flags)
        : m_file(::open(QFile::encodeName(path).constData(), flags | O_CLOEXEC, S_IRUSR | S_IWUSR))
    {
        if (m_file < 0)
            throw storage::DiskError("a file of the scene is missing or cannot be copied", errno);
    }
    ~Descriptor() { ::close(m_file); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int File() const { return m_file; }

private:
    int m_file;
};

[[noreturn]] void ThrowCopyError()
{
    throw storage::DiskError("a file of the scene cannot be copied", errno);
}

void WriteAll(int file, const char* bytes, std::size_t count)
{
    while (count > 0) {
        const ssize_t written = ::write(file, bytes, count);
        if (written < 0 && errno != EINTR)
            ThrowCopyError();
        if (written > 0) {
            bytes += written;
            count -= static_cast<std::size_t>(written);
        }
    }
}

QString Copy(const Descriptor& from, const Descriptor& to, const GoesOn& goesOn)
{
    storage::Sha256 checksum;
    std::vector<char> block(Block);
    std::size_t unsynced = 0;
    ssize_t count = 0;
    while ((count = ::read(from.File(), block.data(), block.size())) != 0) {
        if (!goesOn())
            throw Interrupted();
        if (count < 0)
            ThrowCopyError();
        const auto bytes = static_cast<std::size_t>(count);
        checksum.Add(block.data(), count);
        WriteAll(to.File(), block.data(), bytes);
        unsynced += bytes;
        if (unsynced >= SyncInterval) {
            unsynced = 0;
            if (::fdatasync(to.File()) != 0)
                ThrowCopyError();
        }
    }
    return checksum.Result();
}

bool Link(const QString& from, const QString& to)
{
    const QByteArray name = QFile::encodeName(from);
    return ::chmod(name.constData(), S_IRUSR) == 0
        && ::link(name.constData(), QFile::encodeName(to).constData()) == 0;
}

} // namespace

QString ShareFile(const QString& from, const QString& to, bool mayLink, const GoesOn& goesOn)
{
    if (!mayLink || !Link(from, to)) {
        const Descriptor source(from, O_RDONLY);
        const Descriptor target(to, O_WRONLY | O_CREAT | O_EXCL);
        if (::ioctl(target.File(), FICLONE, source.File()) != 0)
            return Copy(source, target, goesOn);
    }
    const QString checksum = storage::FileChecksum(to, [&goesOn](qint64) { return goesOn(); });
    if (checksum.isEmpty())
        throw Interrupted();
    return checksum;
}

} // namespace farm
