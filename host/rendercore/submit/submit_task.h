#pragma once

#include "host/rendercore/task_message.h"

#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <QVector>

/// The stages of a submission, with the values that `VTRenderCoreInterface` defines.
enum class SubmitStage { Wait, Analyze, Compress, Checksum, CopySame, Upload, Uncompress, Submit };

constexpr bool NeedsFarm(SubmitStage stage)
{
    return stage >= SubmitStage::CopySame;
}

/// The reason why a task has halted. The window treats 0 and 9 specially.
enum class SubmitError {
    None = 0,
    SceneUnusable = 1, ///< the scene cannot be read or needs too many files
    PackingFailed = 2,
    UploadRefused = 3,   ///< the user is asked whether to retry
    GivenUp = 4,         ///< the user chose not to retry
    TexturesMissing = 5, ///< the user chose not to go on without the missing files
    FarmRefused = 6,
    Stopped = 7,
    AwaitsUser = 9 ///< the user has to accept missing files, or to check the arguments
};

/// One file of a submission.
struct PackedFile
{
    QString path;     ///< relative to the job's folder
    QString source;   ///< absolute path on this machine
    QString checksum; ///< SHA-256 of the content; empty before it is known
    int package = -1; ///< index of the package that holds it; -1 while the file is not packed
    // The rest is not saved; a restarted client asks the farm again.
    bool isWanted = false; ///< the farm lacks the content, and no earlier file brings it
};

/// An archive of some files of a submission.
struct Package
{
    QString checksum; ///< SHA-256; empty before it is computed
    qint64 size = 0;  ///< in bytes
    // The rest is not saved; a restarted client asks the farm again.
    bool isSent = false; ///< the farm has the whole package
    QString upload;      ///< the farm's id for the package
};

/// The results of the stages. A new analysis replaces them.
struct SubmitWork
{
    QString scene; ///< the path of one of `files`; empty before the analysis
    QVector<PackedFile> files;
    QVector<Package> packages;
    /// References that lead to no file, as the scene names them, and what else the user has to agree to.
    QVector<TaskMessage> missing;
    int width = 0; ///< the scene's own width in pixels
    int height = 0;
    int frameStep = 1;

    /// Whether the farm can be asked which contents it has.
    bool IsHashed() const;

    /// The indices of the packages that hold wanted files, in ascending order.
    QVector<int> WantedPackages() const;

    QJsonObject ToJson() const;
    static SubmitWork FromJson(const QJsonObject& json);
};

/// A scene being submitted to the farm.
struct SubmitTask
{
    qint64 number = 0; ///< never reused; also names the folder of the packages
    QString id;        ///< "<complete base name of the scene>.<number>"
    QString scene;     ///< absolute path
    QString started;   ///< local time, "yyyy-MM-dd HH:mm:ss"
    QString
        submission; ///< identifies the submission at the farm, so that it becomes one job however often it is sent

    int priority = 0; ///< of the job among the account's jobs

    SubmitStage stage = SubmitStage::Wait;   ///< the stage shown to the user
    SubmitStage next = SubmitStage::Analyze; ///< the stage that runs at the task's next turn
    int progress = 0;                        ///< percent of the stage
    SubmitError error = SubmitError::None;
    TaskMessage message;
    TaskMessage uploadText;
    bool isDone = false;

    QVariantList arguments;           ///< empty before the analysis
    bool areArgumentsEdited = false;  ///< the user has set them; they are not the scene's own
    bool goesOnWithout = false;       ///< the user has agreed to go on without the missing files
    bool areArgumentsChecked = false; ///< the user has approved the arguments
    QStringList refused;              ///< files whose upload failed
    SubmitWork work;

    /// Whether the task continues by itself: it has neither halted nor become a job.
    bool IsRunnable() const { return !isDone && error == SubmitError::None; }
};
