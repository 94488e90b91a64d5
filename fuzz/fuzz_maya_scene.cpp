// Maya scenes: the input is the scene and one that it may refer to.
#include "fuzz/scene_project.h"
#include "host/rendercore/submit/maya_scene.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const SceneProject project;
    for (const char* name : {"scene.ma", "maps/part.ma"})
        WriteFile(project.Path(QLatin1String(name)), Bytes(data, size));
    project.RequireValid(AnalyseMayaScene(project.Path(QStringLiteral("scene.ma")), {}));
    return 0;
}
