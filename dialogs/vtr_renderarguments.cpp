#include "dialogs/vtr_renderarguments.h"

namespace {

constexpr int MaxFrameDistance = 1000;

const QLatin1String Width("width");
const QLatin1String Height("height");
const QLatin1String Prerender("prerender");

QString StartKey(int nGroup)
{
    return QStringLiteral("startFrame_%1").arg(nGroup);
}

QString EndKey(int nGroup)
{
    return QStringLiteral("endFrame_%1").arg(nGroup);
}

} // namespace

VTFrameCheck VTCheckFrames(const VTFrameRange& range)
{
    if (range.nStart > range.nEnd)
        return VTFrameCheck::Reversed;
    return range.nEnd - range.nStart > MaxFrameDistance ? VTFrameCheck::TooLong : VTFrameCheck::Valid;
}

namespace VTRenderArguments {

QVariantMap MakeGroup(int nGroup, const VTFrameRange& range, const VTImageArguments& image)
{
    return {
        {StartKey(nGroup), range.nStart},
        {EndKey(nGroup), range.nEnd},
        {Width, image.strWidth},
        {Height, image.strHeight},
        {Prerender, image.bPrerender},
    };
}

VTFrameRange Frames(const QVariantList& lstArguments, int nGroup)
{
    const QVariantMap mapGroup = lstArguments.value(nGroup).toMap();
    return {mapGroup.value(StartKey(nGroup)).toInt(), mapGroup.value(EndKey(nGroup)).toInt()};
}

VTImageArguments Image(const QVariantList& lstArguments, int nGroup)
{
    const QVariantMap mapGroup = lstArguments.value(nGroup).toMap();
    return {mapGroup.value(Width).toString(), mapGroup.value(Height).toString(),
        mapGroup.value(Prerender).toBool()};
}

} // namespace VTRenderArguments
