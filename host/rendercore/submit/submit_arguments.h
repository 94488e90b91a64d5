#pragma once

#include <QJsonObject>
#include <QVariantList>

/// Arguments for one range of frames as the set-argument dialog edits them: a list of one map with "startFrame_0",
/// "endFrame_0", "width", "height" and "prerender".
QVariantList MakeArguments(int firstFrame, int lastFrame, int width, int height);

/// The arguments with every invalid width and height emptied; an empty one means the scene's.
QVariantList WithUsableSizes(const QVariantList& arguments);

/// Whether a job can have these arguments: 1 to 15 ranges of frames, each width and height empty or valid.
bool AreArguments(const QVariantList& arguments);

/// The members "frames", "width", "height" and "prerender" of a submission.
/// @param arguments AreArguments() must hold for them.
/// @param width, height of the scene itself; used where the arguments leave them empty.
/// @param step is the frame step of each range.
QJsonObject JobMembers(const QVariantList& arguments, int width, int height, int step);
