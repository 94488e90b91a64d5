#pragma once

#include "host/rendercore/submit/scene_contents.h"

/// Analyses a POV-Ray scene with its includes, pictures, fonts and data files. POV-Ray resolves references from the
/// scene's folder, so each file gets the place where it will be looked for; references that climb out of that folder
/// bring along the folders in between. Files that come with POV-Ray itself are neither sent nor missing.
///
/// An absolute reference cannot be resolved at the farm and counts as missing. NAME.ini beside NAME.pov sets size and
/// frames.
SceneAnalysis AnalysePovRayScene(const QString& scene, const BytesRead& onBytes);
