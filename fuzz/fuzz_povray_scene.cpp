// POV-Ray scenes: the input is the scene, a file that it may include, and its options.
#include "fuzz/scene_project.h"
#include "host/rendercore/submit/povray_scene.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const SceneProject project;
    for (const char* name : {"scene.pov", "maps/part.inc", "scene.ini"})
        WriteFile(project.Path(QLatin1String(name)), Bytes(data, size));
    project.RequireValid(AnalysePovRayScene(project.Path(QStringLiteral("scene.pov")), {}));
    return 0;
}
