#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>

/// One file that a scene needs.
struct SceneFile
{
    QString path;   ///< where it is to lie at the farm: relative, with `/`, never climbing
    QString source; ///< where it lies here, absolute
};

/// What a scene needs to be rendered elsewhere.
struct SceneAnalysis
{
    QString error;            ///< English sentence; the rest counts only when it is empty
    QString scene;            ///< the path of one of `files`
    QVector<SceneFile> files; ///< each path once, the scene first
    QStringList missing;      ///< references that lead to no file that can be sent, as the scene names them
    int firstFrame = 1;
    int lastFrame = 1;
    int width = 640; ///< of the pictures in pixels
    int height = 480;
};

/// Is told how many bytes have been read since it was last called; false ends the reading early.
using BytesRead = std::function<bool(qint64)>;

/// The most files that a submission may have.
constexpr int kMostSceneFiles = 4000;

/// Whether this is the name of a scene that can be submitted: `.pov`, `.ma` or `.mb`.
bool IsSceneName(const QString& file);

/// The farm's job type for such a scene.
QString JobTypeOf(const QString& scene);

/// Reads a scene and the texts that it includes, as streams, each once, and looks for every file that they name.
/// Scenes of several hundred megabytes are fine; what an interrupted analysis returns is of no use.
///
/// What a scene puts together while it is parsed (names made of several strings, loops) is not seen, and what stands in
/// branches that are not taken is. A binary Maya scene is sent alone.
/// @param scene absolute path of a file for which IsSceneName() holds.
SceneAnalysis AnalyseScene(const QString& scene, const BytesRead& onBytes = {});

/// Whether a file can be sent under this relative path: the farm takes no drives, backslashes or control characters.
bool IsSendablePath(const QString& path);

/// The absolute path of the first of the candidates that is a file which can be read; empty when none is.
QString FirstReadable(const QStringList& candidates);

/// The frames of an animation, brought to what a job may have: 1 to 99999, at most 20,000 of them.
void SetFrames(SceneAnalysis& analysis, int first, int last);

/// The size of the pictures, where it is one that a job may have; otherwise nothing changes.
void SetSize(SceneAnalysis& analysis, int width, int height);
