#pragma once

#include "farm/accounts/account_store.h"
#include "farm/base/schema.h"
#include "farm/jobs/job_store.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

/// How long a test waits for what must come: renderers run at the lowest priority, on busy machines.
constexpr int patienceMs = 60000;

/// A farm's data in a folder of their own, with one account "ann" (password "secret", balance 10).
class FarmData
{
public:
    explicit FarmData(const QString& folder)
        : database(QDir(folder).filePath(QStringLiteral("farm.sqlite")), farm::Schema())
        , accounts(database, 3600)
        , jobs(database)
    {
        const auto known = accounts.Find(QStringLiteral("ann"));
        account = known ? *known
                        : accounts.Add({QStringLiteral("ann"), QStringLiteral("Ann@example.org"),
                            QStringLiteral("secret"), false, 10'000'000, 0});
    }

    farm::NewJob Job(const QString& name, int frames = 1) const
    {
        farm::NewJob job;
        job.account = account;
        job.type = QStringLiteral("povray");
        job.name = name;
        job.scene = QStringLiteral("scene.txt");
        job.frames = {{1, frames}};
        return job;
    }

    farm::JobRecord Only() { return jobs.List(account, {}, 1, 1).jobs.at(0); }

    farm::Database database;
    farm::AccountStore accounts;
    farm::JobStore jobs;
    std::int64_t account = 0;
};

inline bool WriteFile(const QString& path, const QByteArray& content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

inline QByteArray ReadFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Job types of which "povray" is rendered by a shell script.
inline QByteArray ScriptedTypes(const QString& script, int frameTimeLimitSeconds = 600)
{
    const QJsonObject type {
        {QStringLiteral("program"), QStringLiteral("/bin/sh")},
        {QStringLiteral("arguments"), QJsonArray {QStringLiteral("-c"), script}},
        {QStringLiteral("suffix"), QStringLiteral("txt")},
        {QStringLiteral("frame_time_limit"), frameTimeLimitSeconds},
        // It leaves notes beside the jobs.
        {QStringLiteral("confined"), false},
    };
    return QJsonDocument(QJsonObject {{QStringLiteral("povray"), type}}).toJson();
}
