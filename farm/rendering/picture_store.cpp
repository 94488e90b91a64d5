#include "farm/rendering/picture_store.h"

#include "farm/base/errors.h"
#include "farm/rendering/frame_files.h"

#include <fcntl.h>

namespace farm {

namespace {

// How often opening a picture is tried while restarts of the job keep replacing it.
constexpr int Attempts = 3;

Picture ReadPicture(SQLite::Statement& row)
{
    return {Text(row.getColumn(0)), row.getColumn(1).getInt64(), Text(row.getColumn(2))};
}

std::shared_ptr<QFile> OpenFile(const QString& path)
{
    const int descriptor = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
    if (descriptor < 0)
        return nullptr;
    auto file = std::make_shared<QFile>();
    file->open(descriptor, QIODevice::ReadOnly | QIODevice::Unbuffered, QFileDevice::AutoCloseHandle);
    return file;
}

} // namespace

PictureStore::PictureStore(Database& database, const FrameFiles& files)
    : m_database(database)
    , m_files(files)
{
}

std::vector<Picture> PictureStore::List(std::int64_t account, const QString& job)
{
    return m_database.Read([&](SQLite::Database& connection) {
        SQLite::Statement key(connection, "SELECT key FROM jobs WHERE account = ? AND id = ?");
        Bind(key, account, job);
        if (!key.executeStep())
            throw NotFound("there is no such job");
        SQLite::Statement query(connection,
            "SELECT file, size, checksum FROM frames WHERE job = ? AND file IS NOT NULL "
            "AND (SELECT status FROM jobs WHERE key = ?1) <> 5 ORDER BY number");
        Bind(query, std::int64_t(key.getColumn(0).getInt64()));
        std::vector<Picture> pictures;
        while (query.executeStep())
            pictures.push_back(ReadPicture(query));
        return pictures;
    });
}

std::optional<Picture> PictureStore::Find(std::int64_t account, const QString& job, const QString& name)
{
    return m_database.Read([&](SQLite::Database& connection) -> std::optional<Picture> {
        SQLite::Statement query(connection,
            "SELECT file, size, checksum FROM frames WHERE file = ? "
            "AND job = (SELECT key FROM jobs WHERE account = ? AND id = ? AND status <> 5)");
        Bind(query, name, account, job);
        if (!query.executeStep())
            return std::nullopt;
        return ReadPicture(query);
    });
}

// A restart deletes the record of a picture before the file is replaced. So if the record is the same before and after
// opening the file, it describes that file.
PictureStore::Opened PictureStore::Open(std::int64_t account, const QString& job, const QString& name)
{
    for (int attempt = 0; attempt < Attempts; ++attempt) {
        const auto before = Find(account, job, name);
        if (!before)
            break;
        auto file = OpenFile(m_files.JobFolder(job) + QLatin1Char('/') + before->name);
        const auto after = Find(account, job, name);
        if (file && after && after->checksum == before->checksum && file->size() == before->size)
            return {*before, file};
    }
    throw NotFound("there is no such file");
}

} // namespace farm
