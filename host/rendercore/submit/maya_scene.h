#pragma once

#include "host/rendercore/submit/scene_contents.h"

/// Analyses a Maya scene. A text scene (`.ma`) brings the scenes that it references and the files that attributes of its
/// nodes name: pictures, image planes, Alembic and GPU caches, stand-ins and the like (MayaAttributes). It determines
/// frames and size. A binary scene (`.mb`) is sent alone, with one frame.
///
/// Files in the project's folder, the nearest one above the scene with a workspace.mel, keep their places in it;
/// without a project the scene's folder takes its place. Files from elsewhere go to `external/` and their absolute
/// path, where the farm's path mapping makes the renderer look. Tokens for tiles and frames (FilePattern) bring all
/// files that match; so does the number of a picture whose node is switched to a sequence.
SceneAnalysis AnalyseMayaScene(const QString& scene, const BytesRead& onBytes);
