// Reports of Blender on scenes.
#include "fuzz/scene_project.h"
#include "host/rendercore/submit/blender_scene.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const SceneProject project;
    const QString scene = project.Path(QStringLiteral("scene.blend"));
    WriteFile(scene, {});
    const QString folder = QFileInfo(scene).path();
    const QByteArray report = Bytes(data, size).replace('@', folder.toUtf8());
    const SceneAnalysis analysis = AnalyseBlenderScene(scene, report, {});
    if (analysis.error.IsEmpty())
        project.RequireValid(analysis);
    return 0;
}
