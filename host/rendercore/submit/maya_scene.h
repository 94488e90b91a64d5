#pragma once

#include "host/rendercore/submit/scene_contents.h"

/// Analyses a Maya scene. A text scene (`.ma`) brings the pictures of its file nodes and the scenes that it references,
/// and determines frames and size; a binary scene (`.mb`) is sent alone, with one frame.
///
/// Files in the project's folder, the nearest one above the scene with a workspace.mel, keep their places in it; without
/// a project the scene's folder takes its place. Files from elsewhere go to `external/` and their absolute path, where the
/// farm's path mapping makes the renderer look. Tiles (`<UDIM>`, `<u>`, `<v>`) and frames (`<f>`) stand for all files that
/// match; sequences that are only switched on in a node are not followed.
SceneAnalysis AnalyseMayaScene(const QString& scene, const BytesRead& onBytes);
