#pragma once

#include <QDeadlineTimer>
#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <QVector>

/// The stages that a task goes through, as the window numbers them.
enum class SubmitStage { Wait, Analyze, Compress, Checksum, CopySame, Upload, Uncompress, Submit };

constexpr bool NeedsFarm(SubmitStage stage)
{
    return stage >= SubmitStage::CopySame;
}

/// Why a task stands still. The window knows 0 and 9.
enum class SubmitError {
    None = 0,
    SceneUnusable = 1, ///< it cannot be read or needs too much
    PackingFailed = 2,
    UploadRefused = 3,   ///< the user is asked whether to try again
    GivenUp = 4,         ///< the user did not want to
    TexturesMissing = 5, ///< the user did not want to go on without
    FarmRefused = 6,
    Stopped = 7,
    AwaitsUser = 9 ///< for the go-ahead: without the missing files, or with the arguments as they are
};

/// One file of a submission on its way.
struct PackedFile
{
    QString path;            ///< in the job's folder
    QString source;          ///< absolute
    QString checksum;        ///< of the content, once it is packed
    QString packageChecksum; ///< of the package, likewise
    qint64 packageSize = 0;  ///< in bytes
    // Found out again after a restart:
    bool isWanted = false; ///< the farm lacks the content, and no earlier file brings it
    bool isSent = false;   ///< the farm has the whole package
    QString upload;        ///< the farm's id for the package
};

/// What the stages find out about a scene. It is made anew when a task is analysed anew.
struct SubmitWork
{
    QString scene; ///< the path of one of `files`; empty before the analysis
    QVector<PackedFile> files;
    QStringList missing;
    int width = 0; ///< of the scene itself, in pixels
    int height = 0;

    bool IsPacked() const;
    QJsonObject ToJson() const;
    static SubmitWork FromJson(const QJsonObject& json);
};

/// A scene on its way to the farm.
struct SubmitTask
{
    qint64 number = 0;  ///< never given twice; also names the folder of the packages
    QString id;         ///< "<complete base name of the scene>.<number>"
    QString scene;      ///< absolute path
    QString started;    ///< local time, "yyyy-MM-dd HH:mm:ss"
    QString submission; ///< the submission's name at the farm

    SubmitStage stage = SubmitStage::Wait;   ///< as shown
    SubmitStage next = SubmitStage::Analyze; ///< what is to be done when it is its turn
    int progress = 0;                        ///< percent of the stage
    SubmitError error = SubmitError::None;
    QString message;
    QString uploadText;
    bool isDone = false;

    int failures = 0;         ///< rounds in a row in which the farm answered, but nothing came of it
    QDeadlineTimer notBefore; ///< the farm is not asked for it earlier

    QVariantList arguments;           ///< empty before the analysis
    bool areArgumentsEdited = false;  ///< they are the user's, not the scene's
    bool goesOnWithout = false;       ///< the user has agreed to what is missing
    bool areArgumentsChecked = false; ///< the user has agreed to the arguments
    QStringList refused;              ///< files whose upload has failed
    SubmitWork work;

    bool IsRunnable() const { return !isDone && error == SubmitError::None; }
};
