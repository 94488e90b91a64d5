#pragma once

#include <QProcessEnvironment>
#include <QString>

/// The program that runs a renderer ends all of the renderer's processes. If that program is killed, some may be left
/// to burden the machine, so they all carry marks of the farm's folder and of the run in their environment.
namespace farm::StrayRenderers {

/// Marks a process, and all that it starts, as processes of this farm and this run.
void Mark(QProcessEnvironment& environment, const QString& dataFolder, const QString& run);

/// Ends the processes that an earlier farm process has left behind. Call it while no other farm can use the folder.
void End(const QString& dataFolder);
/// Ends the processes that a run has left behind.
void EndRun(const QString& run);

} // namespace farm::StrayRenderers
