#pragma once

#include <QProcessEnvironment>
#include <QString>

/// Renderers may be scripts that start other programs. Unlike the scripts, these programs do not end with a farm that is
/// killed, and would write into the frames of the next one. So they all carry a mark of the farm's folder in their
/// environment.
namespace farm::StrayRenderers {

/// Marks a renderer, and all programs that it starts, as processes of this farm.
void Mark(QProcessEnvironment& environment, const QString& dataFolder);

/// Ends the processes that an earlier farm has left behind. Call it while no other farm can use the folder.
void End(const QString& dataFolder);

} // namespace farm::StrayRenderers
