#pragma once

#include "host/rendercore/submit/scene_analysis.h"

/// A POV-Ray scene with its includes, pictures, fonts and data files. POV-Ray looks for all of them from the scene's
/// folder, so each is given the place where it will be looked for; references that climb out of that folder take the
/// folders between along. What comes with POV-Ray itself is neither sent nor missing.
///
/// An absolute reference cannot be found at the farm and counts as missing. Size and frames are read from the options
/// in NAME.ini beside NAME.pov.
SceneAnalysis AnalysePovRayScene(const QString& scene, const BytesRead& onBytes);
