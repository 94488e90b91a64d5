#pragma once

#include "host/rendercore/submit/scene_contents.h"

/// The handling of one renderer's scenes. A further renderer is added as another kind.
struct SceneKind
{
    const char* jobType;  ///< the farm's job type
    QStringList suffixes; ///< lower case
    /// Finds the files of a scene.
    /// @param report is that of the program below; empty without one.
    SceneAnalysis (*analyse)(const QString& scene, const QByteArray& report, const BytesRead& onBytes);

    /// A program that has to read the scenes first, because only the renderer itself can; null where `analyse` does it.
    const char* program = nullptr;
    /// Its arguments, with which it writes its report to a file.
    QStringList (*arguments)(const QString& scene, const QString& report) = nullptr;
    // Sentences of messages.
    const char* reading = nullptr; ///< the program is at work
    const char* lacking = nullptr; ///< the program is not installed
    const char* failed = nullptr;  ///< the program has written no report
};

/// The kind of a scene; null for other files.
const SceneKind* KindOfScene(const QString& file);

/// The suffixes of all scenes that can be submitted, in lower case.
QStringList SceneSuffixes();

/// The farm's job type for a scene; empty for other files.
QString JobTypeOf(const QString& scene);

/// Says why a scene cannot be analysed; empty when it can. Does not read it.
TaskMessage WhyNotAnalysed(const QString& scene);

/// The scene's path without links to folders: a renderer that follows ".." gets to the parent of the real folder.
QString RealScenePath(const QString& scene);

/// Reads a scene and the texts that it includes, each once as a stream, and finds the files that they name. Scenes of
/// several hundred megabytes are fine. The result of an analysis that was ended early is not valid.
///
/// Names that a scene composes at parse time are not found; names in branches not taken are. A binary Maya scene is
/// sent alone.
/// @param scene absolute path of a file that has a kind.
/// @param report is that of the kind's program, if it has one.
SceneAnalysis AnalyseScene(
    const QString& scene, const BytesRead& onBytes = {}, const QByteArray& report = {});
