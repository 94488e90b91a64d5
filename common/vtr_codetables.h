#pragma once

#include <QMap>
#include <QString>

/// The client's tables from code to text. The texts are the English ones, which are also the translation keys.
struct VTCodeTables
{
    static constexpr int JobWaiting = 0;
    static constexpr int JobRunning = 1;
    static constexpr int JobFinished = 4;

    QMap<int, QString> mapJobStatus;
    /// Band (percent / 50) to the style sheet of a progress bar.
    QMap<int, QString> mapProgressStyle;
    QMap<int, QString> mapTaskStage;
    QMap<int, QString> mapDownloadState;

    /// Fills all four tables.
    void Load();

    /// Translated text of a job status, "Unknown" translated for a code that is not in the table.
    QString JobStatusText(int nStatus) const { return JobStatusText(mapJobStatus, nStatus); }
    static QString JobStatusText(const QMap<int, QString>& mapStatus, int nStatus);

    /// Style sheet for a percentage: red below 50, orange below 100, green at 100; empty from 150 on.
    QString ProgressStyle(int nPercent) const { return mapProgressStyle.value(nPercent / 50); }
};
