#pragma once

#include <QVariantList>
#include <QVariantMap>

/// First and last frame of one group, both rendered.
struct VTFrameRange
{
    int nStart = 0;
    int nEnd = 0;
};

enum class VTFrameCheck {
    Valid,
    Reversed, ///< starts after its end
    TooLong   ///< end lies more than 1000 frames after start
};

VTFrameCheck VTCheckFrames(const VTFrameRange& range);

/// Arguments that all groups of a task share. The size is text, as typed; it may be empty.
struct VTImageArguments
{
    QString strWidth;
    QString strHeight;
    bool bPrerender = false;
};

/// Reads and writes the render arguments of a local task: a list with one map per group. The keys of a group's frames
/// contain its index. A missing group or key reads as 0, false or empty.
namespace VTRenderArguments {

QVariantMap MakeGroup(int nGroup, const VTFrameRange& range, const VTImageArguments& image);
VTFrameRange Frames(const QVariantList& lstArguments, int nGroup);
VTImageArguments Image(const QVariantList& lstArguments, int nGroup);

} // namespace VTRenderArguments
