#pragma once

#include "farm/farm.h"
#include "tests/farm/farm_client.h"

/// A farm in its own folder, which runs once it has been started, and its client ann.
class FarmAtWork : public FarmClient
{
    QTemporaryDir m_folder;

public:
    FarmAtWork()
    {
        settings.dataFolder = m_folder.path();
        settings.sceneFolder = m_folder.path();
        settings.jobTypesFile = Path("types.json"_s);
        settings.demo = false;
        // So long that only a nudge makes the scheduler look at the jobs.
        settings.lookInterval = std::chrono::hours(1);
        settings.diskReserve = 0;
        settings.retryPause = std::chrono::seconds(0);
        WriteFile(Path("scene.txt"_s), "the farm's scene");
    }

    /// Starts the farm, or starts it again; without job types nothing is rendered.
    void Start(QByteArray types = "{}")
    {
        End();
        WriteFile(settings.jobTypesFile, types.replace("@jobs@", Path("jobs"_s).toUtf8()));
        m_farm = std::make_unique<farm::Farm>(settings);
        SetUrl(m_farm->Url());
        SignIn("ann", "secret");
    }

    void End() { m_farm.reset(); }

    QString Path(const QString& name) const { return m_folder.filePath(name); }

    /// The log of the scripted renderers in one line.
    QByteArray Log() const { return ReadFile(Path("jobs/log"_s)).replace('\n', ' ').trimmed(); }

    /// Releases the scripted renderers that wait for jobs/gate.
    bool OpenGate() const { return WriteFile(Path("jobs/gate"_s), {}); }

    /// Adds a job of ann's without telling the running farm; returns its id.
    QString Add(int frames, farm::JobStatus status = farm::JobStatus::Waiting)
    {
        farm::NewJob job = data.Job("job"_s, frames);
        job.status = status;
        return data.jobs.Add(job).id;
    }

    farm::JobRecord Job(const QString& id) { return data.jobs.Find(data.account, id); }
    farm::JobStatus Status(const QString& id) { return farm::JobStatus(Job(id).status); }
    /// The status of ann's newest job.
    farm::JobStatus Status() { return farm::JobStatus(data.Only().status); }

    farm::FarmSettings settings;
    FarmData data {m_folder.path()};

private:
    std::unique_ptr<farm::Farm> m_farm;
};
