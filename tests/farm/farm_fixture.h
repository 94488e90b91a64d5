#pragma once

#include "farm/accounts/account_store.h"
#include "farm/accounts/ledger.h"
#include "farm/accounts/project_store.h"
#include "farm/base/change_feed.h"
#include "farm/base/schema.h"
#include "farm/jobs/job_store.h"
#include "tests/support/test_files.h"
#include "tests/support/waiting.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

/// The database in a farm's folder, with the account "ann" (password "secret", balance 10).
class FarmData
{
public:
    explicit FarmData(const QString& folder)
        : database(QDir(folder).filePath("farm.sqlite"_s), farm::Schema())
        , accounts(database, 3600)
        , projects(database)
        , jobs(database)
    {
        const auto known = accounts.Find("ann"_s);
        account = known ? *known : Add("ann", "secret", 10'000'000);
    }

    /// Adds an account with an address at example.org.
    std::int64_t Add(const char* name, const char* password, farm::Micros balance = 0, bool bound = false)
    {
        const QString text = QString::fromLatin1(name);
        const QString address = text + "@example.org"_s;
        return accounts.Add({text, address, QString::fromLatin1(password), bound, balance, 300'000'000});
    }

    farm::NewJob Job(const QString& name, int frames = 1) const
    {
        farm::NewJob job;
        job.account = account;
        job.type = "povray"_s;
        job.name = name;
        job.scene = "scene.txt"_s;
        job.frames = {{1, frames}};
        return job;
    }

    /// Ann's newest job, for tests that have one at a time.
    farm::JobRecord Only() { return jobs.List(account, {}, 1, 1).jobs.at(0); }

    /// Pays in, or takes out, what makes up this balance.
    void SetBalance(farm::Micros balance) { farm::Ledger(database).Pay("ann"_s, balance - Balance(), {}, 0); }

    std::int64_t AddProject(const char* name, const char* pool, const QStringList& members)
    {
        const std::int64_t key = projects.Add({QLatin1String(name), QLatin1String(pool)}, 0);
        for (const QString& member : members)
            projects.Assign(QLatin1String(pool), member, 0);
        return key;
    }

    farm::Micros Balance() { return accounts.Info(account).balance; }

    int Count(const char* sql)
    {
        return database.Read(
            [sql](SQLite::Database& connection) { return connection.execAndGet(sql).getInt(); });
    }

    void Change(const char* sql)
    {
        database.Write([sql](SQLite::Database& connection) { connection.exec(sql); });
    }

    farm::Database database;
    farm::AccountStore accounts;
    farm::ProjectStore projects;
    farm::JobStore jobs;
    farm::ChangeFeed feed;
    farm::AccountTerms terms {farm::DefaultPrice, std::int64_t {20} << 30};
    std::int64_t account = 0;
};

inline QJsonObject Json(const QByteArray& text)
{
    return QJsonDocument::fromJson(text).object();
}

/// Job types of which "povray" is rendered by a shell script, which may also use the folder "@jobs@".
/// @param frameTimeLimit is in seconds.
inline QByteArray ScriptedTypes(const QByteArray& script, int frameTimeLimit = 600)
{
    const QJsonArray arguments {"-c"_s, QString::fromLatin1(script)};
    // Scripts write their logs beside the jobs.
    const QJsonObject type {{"program"_s, "/bin/sh"_s}, {"arguments"_s, arguments}, {"suffix"_s, "txt"_s},
        {"frame_time_limit"_s, frameTimeLimit}, {"confined"_s, false},
        {"writable"_s, QJsonArray {"@jobs@"_s}}};
    return QJsonDocument(QJsonObject {{"povray"_s, type}}).toJson();
}
