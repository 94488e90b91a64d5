#pragma once

#include <QMetaType>
#include <QString>
#include <QVector>

/// As the window shows them.
enum class DownloadState { Waiting = 0, Downloading = 1, Finished = 2, Failed = 3, Stopped = 4 };

/// A file that is to come, or has come, from the farm.
struct DownloadTask
{
    qint64 id = 0;    ///< running number; never used again
    QString job;      ///< the farm's id of it
    QString name;     ///< as the farm has it, harmless or not
    QString file;     ///< where it goes, absolute
    qint64 size = 0;  ///< in bytes
    QString checksum; ///< SHA-256 as 64 lower-case hexadecimal digits
    DownloadState state = DownloadState::Waiting;
    int progress = 0; ///< percent
    bool fresh
        = false; ///< the file that is there is the task's own of before; it does not count and is replaced
    QString message;
};

/// What a task shows from now on.
struct DownloadChange
{
    qint64 id = 0;
    DownloadState state = DownloadState::Waiting;
    int progress = 0;
    QString message;
    QString file; ///< where it goes from now on; empty: where it went before
};

/// A file as the farm lists it.
struct FarmFile
{
    QString name;
    qint64 size = 0;
    QString checksum;
};

/// The wish to have the files of a job.
struct DownloadOrder
{
    enum Kind {
        Automatic = 0, ///< counts once for a job
        Manual = 1,    ///< also brings back what was stopped, has failed or is damaged
        Renewal = 2    ///< only brings waiting tasks up to date, after the farm has changed their files
    };

    QString job;
    QString subDir; ///< as it came, harmless or not
    Kind kind = Automatic;
    qint64 serial = 0; ///< tells whether the order was given anew since it was read
};

using DownloadTasks = QVector<DownloadTask>;
using DownloadChanges = QVector<DownloadChange>;
using FarmFiles = QVector<FarmFile>;
using DownloadOrders = QVector<DownloadOrder>;
using TaskIds = QVector<qint64>;

Q_DECLARE_METATYPE(DownloadTask)
Q_DECLARE_METATYPE(DownloadChange)
