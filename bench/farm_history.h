#pragma once

#include <QString>

/// The data folder of a farm that has been running for years: the account "ann" (password "secret") with many jobs of two
/// frames each, and "bob" (the same password) with a hundred.
struct FarmHistory
{
    static constexpr int WaitingJobs = 400;
    /// Ann's projects have the pools "pool-1" to "pool-5".
    static constexpr int Projects = 5;
    /// Seconds between two submissions.
    static constexpr int Interval = 120;

    QString folder;
    int jobs = 0;

    /// Fills an empty folder by SQL.
    void Write() const;
    /// The time at which the job with this number was submitted, in seconds since the epoch.
    qint64 SubmittedAt(int number) const;
};
