#pragma once

#include <QJsonObject>
#include <QVariantList>

// What a job of the farm may have.
constexpr int kMostRanges = 15;
constexpr int kLastFrame = 99999;
constexpr int kMostFrames = 20000;
constexpr int kLongestSide = 16384;

/// The arguments that the set-argument dialog edits, for one range of frames: a list of one map with "startFrame_0",
/// "endFrame_0", "width", "height" and "prerender".
QVariantList MakeArguments(int firstFrame, int lastFrame, int width, int height);

/// The arguments with every side that is no number of pixels, or one that no job may have, left empty.
QVariantList WithUsableSizes(const QVariantList& arguments);

/// Whether a job could be made of these: 1 to 15 ranges of frames in order, each side empty or a number of pixels.
bool AreArguments(const QVariantList& arguments);

/// The members "frames", "width", "height" and "prerender" of a submission.
/// @param arguments for which AreArguments() holds; of others the farm makes no job.
/// @param width and height of the scene itself, for where the arguments leave them empty.
QJsonObject JobMembers(const QVariantList& arguments, int width, int height);
