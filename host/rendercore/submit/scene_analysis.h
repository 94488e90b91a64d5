#pragma once

#include "host/rendercore/submit/scene_contents.h"

/// Whether a file can be submitted by its name: `.pov`, `.ma` or `.mb`.
bool IsSceneName(const QString& file);

/// The farm's job type for a scene; empty for other files.
QString JobTypeOf(const QString& scene);

/// Reads a scene and the texts that it includes, each once as a stream, and finds the files that they name. Scenes of
/// several hundred megabytes are fine. The result of an analysis that was ended early is not valid.
///
/// Names that a scene composes at parse time are not found; names in branches not taken are. A binary Maya scene is
/// sent alone.
/// @param scene absolute path of a file for which IsSceneName() holds.
SceneAnalysis AnalyseScene(const QString& scene, const BytesRead& onBytes = {});
