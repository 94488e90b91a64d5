#pragma once

#include "host/rendercore/submit/scene_analysis.h"

/// A Maya scene. Of a text scene (`.ma`) the pictures of file nodes and the referenced scenes go along, and its frames
/// and size are read; a binary scene (`.mb`) goes alone with one frame.
///
/// Files beneath the project's folder, the nearest one with a workspace.mel, keep their places in it; where there is no
/// project it is the scene's folder. Files from elsewhere go to `external/` under their absolute path; that the renderer
/// looks for absolute paths there is the farm's path mapping. Tiles (`<UDIM>`, `<u>`, `<v>`) and frames (`<f>`) stand
/// for all the files that fit; sequences that are only marked by a node's switches are not followed.
SceneAnalysis AnalyseMayaScene(const QString& scene, const BytesRead& onBytes);
