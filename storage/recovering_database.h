#pragma once

#include "storage/database.h"

#include <exception>
#include <functional>
#include <memory>

namespace storage {

/// A database that begins anew when its file turns out to be unusable for good: damaged, not a database, written by a
/// newer version of the program, or not this user's to read and write. The old file is renamed, never deleted. A failure
/// that may pass, such as a full disk, is only thrown.
///
/// The file is opened at first use, and again at each use until that succeeds. For one thread.
class RecoveringDatabase
{
public:
    /// @param keptAs the path under which the unusable file is kept.
    using Replaced = std::function<void(const QString& keptAs)>;

    /// @param onReplaced is called before the fresh database is used for the first time.
    RecoveringDatabase(const QString& path, const Migrations& migrations, Replaced onReplaced = {});
    ~RecoveringDatabase();

    /// See Database::Read(). In a fresh database the work is done once more.
    template <typename Work>
    auto Read(Work work)
    {
        return Use([&work](Database& database) { return database.Read(work); });
    }

    /// See Database::Write(). In a fresh database the work is done once more.
    template <typename Work>
    auto Write(Work work)
    {
        return Use([&work](Database& database) { return database.Write(work); });
    }

private:
    template <typename Work>
    auto Use(Work work)
    {
        // The connection is still in use while the outer work runs.
        if (m_isBusy)
            return work(*m_database);
        const Busy busy(m_isBusy);
        try {
            return work(Opened());
        } catch (const std::exception& failure) {
            if (!SetAside(failure))
                throw;
        }
        return work(Opened());
    }

    struct Busy
    {
        explicit Busy(bool& flag)
            : isBusy(flag)
        {
            isBusy = true;
        }
        ~Busy() { isBusy = false; }
        Busy(const Busy&) = delete;
        Busy& operator=(const Busy&) = delete;

        bool& isBusy;
    };

    Database& Opened();
    bool SetAside(const std::exception& failure);

    QString m_path;
    Migrations m_migrations;
    Replaced m_onReplaced;
    std::unique_ptr<Database> m_database;
    bool m_isBusy = false;
};

} // namespace storage
