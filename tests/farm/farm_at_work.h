#pragma once

#include "farm/farm.h"
#include "tests/farm/farm_client.h"
#include "tests/farm/farm_fixture.h"

/// A farm in a folder of its own, once it has been started, and ann who steers it over HTTP.
class FarmAtWork : public FarmClient
{
public:
    FarmAtWork()
        : data(m_folder.path())
    {
    }

    /// Starts the farm or starts it again; without job types nothing is rendered.
    void Start(const QByteArray& types = "{}", std::int64_t quota = farm::FarmSettings().quota,
        farm::Micros price = farm::DefaultPrice)
    {
        End();
        farm::FarmSettings settings;
        settings.dataFolder = m_folder.path();
        settings.sceneFolder = m_folder.path();
        settings.jobTypesFile = Path("types.json");
        settings.pricePerCoreSecond = price;
        settings.demo = false;
        settings.quota = quota;
        WriteFile(Path("scene.txt"), "the farm's scene");
        WriteFile(Path("types.json"), types);
        m_farm = std::make_unique<farm::Farm>(settings);
        SetUrl(m_farm->Url());
        SignIn("ann", "secret");
    }

    void End() { m_farm.reset(); }

    /// A path in the farm's folder.
    QString Path(const char* pattern, const QStringList& parts = {}) const
    {
        return m_folder.filePath(Fill(pattern, parts));
    }

    /// What the scripted renderers have noted, in one line.
    QByteArray Log() const { return ReadFile(Path("jobs/log")).replace('\n', ' ').trimmed(); }

    int Status(const QString& id) { return data.jobs.Find(data.account, id)->status; }

    void Change(const char* sql)
    {
        data.database.Write([sql](SQLite::Database& connection) { connection.exec(sql); });
    }

private:
    QTemporaryDir m_folder;

public:
    FarmData data;

private:
    std::unique_ptr<farm::Farm> m_farm;
};
