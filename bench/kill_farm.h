#pragma once

#include "bench/kill_run.h"
#include "tests/farm/farm_fixture.h"

/// Creates the database of a farm with the account ann. @return the token of a session of hers.
inline QString PrepareFarm(const QString& folder)
{
    FarmData data(folder);
    data.SetBalance(1'000'000'000);
    return data.accounts.SignIn("ann"_s, "secret"_s, QDateTime::currentSecsSinceEpoch())->token;
}

/// Copies a database that PrepareFarm() has created into the run's folder "farm". @return that folder.
inline QString CopyFarm(const QString& prepared, const KillRun& run)
{
    const QString folder = run.Path("farm"_s);
    QDir().mkdir(folder);
    QFile::copy(prepared + "/farm.sqlite"_s, folder + "/farm.sqlite"_s);
    return folder;
}
