#pragma once

#include "farm/base/schema.h"

#include <QFile>

#include <memory>

namespace farm {

class FrameFiles;

/// The logs of frames: the renderer's whole output in the attempt that ended last. Thread-safe.
class LogStore
{
public:
    LogStore(Database& database, const FrameFiles& files);

    /// The log of a frame of any account's job, open for reading; null when there is none.
    std::shared_ptr<QFile> Open(const QString& job, int frame);
    /// The same for a job of this account. Throws NotFound when there is no such job.
    std::shared_ptr<QFile> OpenOwn(std::int64_t account, const QString& job, int frame);

private:
    std::shared_ptr<QFile> OpenEnd(const QString& job, int frame);

    Database& m_database;
    const FrameFiles& m_files;
};

} // namespace farm
