#pragma once

#include "farm/base/schema.h"
#include "farm/rendering/picture.h"

#include <QFile>

#include <memory>
#include <optional>
#include <vector>

namespace farm {

class FrameFiles;

/// The finished frames that accounts fetch. Thread-safe.
class PictureStore
{
public:
    PictureStore(Database& database, const FrameFiles& files);

    /// The pictures of the account's job in the order of their numbers; none of a deleted job. Throws NotFound when
    /// there is no such job.
    std::vector<Picture> List(std::int64_t account, const QString& job);

    struct Opened
    {
        Picture picture;
        /// Open for reading.
        std::shared_ptr<QFile> file;
    };
    /// The job's picture with this name. Throws NotFound.
    Opened Open(std::int64_t account, const QString& job, const QString& name);

private:
    std::optional<Picture> Find(std::int64_t account, const QString& job, const QString& name);

    Database& m_database;
    const FrameFiles& m_files;
};

} // namespace farm
