#pragma once

#include "host/rendercore/submit/scene_contents.h"

/// Lets Blender write a report on a scene; defined by the build from blender_report.py.
extern const char* const BlenderReportScript;

/// Arguments with which Blender, in the background and without running any Python of the scene, writes a report.
QStringList BlenderArguments(const QString& scene, const QString& report);

/// Reads Blender's report on a scene: its files, frames, size and engine. Sequences and tiles bring all files that
/// match, folders of caches all of their files.
///
/// At the farm, each file is stored under its whole absolute path. So relative references need no change, and the farm
/// resolves absolute ones below the folder of the job's files.
/// @param report comes from Blender, which has read a file from anywhere, so nothing in it is relied on.
SceneAnalysis AnalyseBlenderScene(const QString& scene, const QByteArray& report, const BytesRead& onBytes);
