#pragma once

#include <QProcessEnvironment>
#include <QString>

/// Renderers may be scripts that start other programs. Unlike the script itself, those do not end with a farm that is
/// killed, and would write into the frames of the next farm. So they all carry a mark of the farm's folder in their environment.
namespace farm::StrayRenderers {

/// Makes a renderer, and whatever it starts, one of this farm.
void Mark(QProcessEnvironment& environment, const QString& dataFolder);

/// Ends what an earlier farm has left. Call it while no other farm can use the folder.
void End(const QString& dataFolder);

} // namespace farm::StrayRenderers
