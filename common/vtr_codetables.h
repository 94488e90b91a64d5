#pragma once

#include <QMap>
#include <QString>

/// The code tables: texts of job status, task stage and download state, and styles of progress bars. The texts are
/// English and serve as translation keys.
struct VTCodeTables
{
    static constexpr int JobWaiting = 0;
    static constexpr int JobRunning = 1;
    static constexpr int JobFinished = 4;
    static constexpr int JobFailed = 7;

    static constexpr int DownloadFinished = 2;

    QMap<int, QString> mapJobStatus;
    /// Style sheets of a progress bar by band (percent / 50).
    QMap<int, QString> mapProgressStyle;
    QMap<int, QString> mapTaskStage;
    QMap<int, QString> mapDownloadState;

    /// Fills all four tables.
    void Load();

    /// Translated text of a job status; the translation of "Unknown" for a code that is not in the table.
    QString JobStatusText(int nStatus) const { return JobStatusText(mapJobStatus, nStatus); }
    static QString JobStatusText(const QMap<int, QString>& mapStatus, int nStatus);

    /// Style sheet for a percentage: red below 50, orange below 100, green at 100; empty from 150 on.
    QString ProgressStyle(int nPercent) const { return mapProgressStyle.value(nPercent / 50); }
};
