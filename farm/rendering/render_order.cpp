#include "farm/rendering/render_order.h"

#include <QFileInfo>

namespace farm {

RunOrder OrderFor(const RunId& id, const FrameTask& task, const JobType& type, const RenderPlace& place,
    const Renderers& renderers)
{
    const double clock = double(task.Number() - task.firstFrame) / task.FrameSpan();
    const QMap<QString, QString> values {
        {QStringLiteral("scene"), place.FromWorkFolder(place.sceneFile)},
        {QStringLiteral("scene_folder"), place.FromWorkFolder(place.sceneFolder)},
        {QStringLiteral("output"), place.FromWorkFolder(place.Output())},
        {QStringLiteral("output_folder"), place.FromWorkFolder(place.run.OutputFolder())},
        {QStringLiteral("output_name"), QFileInfo(place.outputName).completeBaseName()},
        {QStringLiteral("width"), QString::number(task.width)},
        {QStringLiteral("height"), QString::number(task.height)},
        {QStringLiteral("frame"), QString::number(task.Number())},
        {QStringLiteral("frames"), QString::number(task.FrameSpan())},
        {QStringLiteral("clock"), QString::number(clock, 'f', 6)},
        {QStringLiteral("cores"), QString::number(type.resources.cores)},
        {QStringLiteral("script"), type.script},
    };
    RunOrder order;
    order.id = id;
    order.program = type.program;
    order.arguments = FillIn(type.arguments, values);
    order.folder = place.workFolder;
    order.resources = type.resources;
    order.licenceMissing = type.licenceMissing.pattern();
    order.reach = {type.confined, QStringList {place.sceneFolder} + type.readable,
        QStringList {place.run.OutputFolder()} + type.writable, renderers.hidden};
    order.user = renderers.user;
    order.files = place.run;
    return order;
}

} // namespace farm
