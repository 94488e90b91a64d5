#pragma once

#include "host/rendercore/task_message.h"

#include <QString>
#include <QVector>

/// The values that `VTRenderCoreInterface` defines.
enum class DownloadState { Waiting = 0, Downloading = 1, Finished = 2, Failed = 3, Stopped = 4 };

/// One file to be downloaded from the farm.
struct DownloadTask
{
    qint64 id = 0;    ///< sequential number; never reused
    QString job;      ///< the job's id at the farm
    QString name;     ///< the farm's name of the file; not to be trusted as a path
    QString file;     ///< absolute path of the destination
    qint64 size = 0;  ///< in bytes
    QString checksum; ///< SHA-256 as 64 lower-case hexadecimal digits
    DownloadState state = DownloadState::Waiting;
    int progress = 0;   ///< percent
    bool fresh = false; ///< the file at the destination is this task's own earlier one and is to be replaced
    TaskMessage message;
};

/// A change in the values of a task that the window shows.
struct DownloadChange
{
    qint64 id = 0;
    DownloadState state = DownloadState::Waiting;
    int progress = 0; ///< percent
    TaskMessage message;
    QString file; ///< the new destination; empty when it has not changed
};

inline DownloadChange ChangeOf(const DownloadTask& task)
{
    return {task.id, task.state, task.progress, task.message, {}};
}

/// A file as the farm lists it.
struct FarmFile
{
    QString name;
    qint64 size = 0; ///< in bytes
    QString checksum;
};

/// A request to download a job's files.
struct DownloadOrder
{
    enum Kind {
        Automatic = 0, ///< adds what is new at the farm, except files that have been removed from the list
        Manual = 1,    ///< also brings back files that are stopped, failed, lost or changed
        Renewal = 2    ///< only updates waiting tasks, after the farm has changed their files
    };

    QString job;
    QString subDir; ///< the window's name for the job's folder; not to be trusted as a path
    Kind kind = Automatic;
    qint64 serial = 0; ///< changes whenever the order is given again
};

using DownloadTasks = QVector<DownloadTask>;
using DownloadChanges = QVector<DownloadChange>;
using FarmFiles = QVector<FarmFile>;
using DownloadOrders = QVector<DownloadOrder>;
using TaskIds = QVector<qint64>;
