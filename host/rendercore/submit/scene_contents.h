#pragma once

#include "host/rendercore/task_message.h"

#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>

/// A file that a scene needs.
struct SceneFile
{
    QString path;   ///< path at the farm: relative, with `/`, without `..`
    QString source; ///< absolute path on this machine
};

/// The files that a scene needs to be rendered at the farm, and the job that it describes.
struct SceneAnalysis
{
    TaskMessage error;        ///< everything else is valid only when it is empty
    QString scene;            ///< the path of one of `files`
    QVector<SceneFile> files; ///< each path once, the scene first
    /// References to files that are not there or cannot be sent, as the scene names them.
    QStringList missing;
    /// References by absolute paths, which lead to nothing at the farm.
    QStringList absolute;
    /// Absolute paths of the `files` outside the scene's folder and its project. Users who got the scene from somebody
    /// else do not expect them to be sent.
    QStringList outside;
    /// Sentences about differences between the scene's settings and the farm's rendering, to which the user has to agree.
    QVector<TaskMessage> remarks;
    int firstFrame = 1;
    int lastFrame = 1;
    int frameStep = 1; ///< 1 renders every frame, 2 every second one and so on, from the first
    int width = 640;   ///< width of a frame in pixels
    int height = 480;
};

/// Called with the number of bytes read since the last call, which is often 0; returning false ends the reading early.
using BytesRead = std::function<bool(qint64)>;

/// The most files that a submission may have.
constexpr int MostSceneFiles = 4000;

/// The error of a scene with more of them.
TaskMessage TooManyFiles();

/// Whether the farm accepts this relative path: it must be free of colons, backslashes and control characters.
bool IsSendablePath(const QString& path);

/// Text of a scene: UTF-8 or, where it is not valid, Latin-1.
QString SceneText(const QByteArray& bytes);

/// Whether a file lies in the folder itself: links that lead out of it and hidden folders do not count.
/// @param folder must be a canonical path.
bool LiesIn(const QString& folder, const QString& file);

/// The absolute path of the first candidate that is a readable file; empty when none is.
QString FirstReadable(const QStringList& candidates);

/// Sets the frames of an animation, limited to what a job may have: 1 to 99999, at most 20,000 of them. A remark names
/// those that are left out.
void SetFrames(SceneAnalysis& analysis, int first, int last);

/// Sets width and height, each only if a job may have it.
void SetSize(SceneAnalysis& analysis, int width, int height);
