#pragma once

#include "tests/support/test_tables.h"

#include <QProcess>
#include <QStandardPaths>

inline bool HasBlender()
{
    return !QStandardPaths::findExecutable("blender"_s).isEmpty();
}

/// Lets Blender run a script, in which `folder` is a path and Picture() writes a picture of one colour.
/// @return the end of its output; empty on success.
inline QByteArray RunBlender(const QString& folder, const QString& script)
{
    static const QString preparation = QString::fromLatin1(R"py(
import os, sys, bpy
folder = sys.argv[-1]
def Picture(name, color):
    os.makedirs(os.path.dirname(f"{folder}/{name}"), exist_ok=True)
    image = bpy.data.images.new(name, 8, 8)
    image.generated_color = color
    image.file_format = "PNG"
    image.filepath_raw = f"{folder}/{name}"
    image.save()
    bpy.data.images.remove(image)
    return bpy.data.images.load(f"{folder}/{name}")
def Save(name):
    os.makedirs(os.path.dirname(f"{folder}/{name}"), exist_ok=True)
    bpy.ops.wm.save_as_mainfile(filepath=f"{folder}/{name}", relative_remap=False)
)py");
    QProcess blender;
    blender.setProcessChannelMode(QProcess::MergedChannels);
    blender.start("blender"_s,
        {"--background"_s, "--factory-startup"_s, "--python-exit-code"_s, "1"_s, "--python-expr"_s,
            preparation + script, "--"_s, folder});
    const bool isDone = blender.waitForFinished(Patience) && blender.exitCode() == 0;
    return isDone ? QByteArray() : "Blender failed: " + blender.readAll().right(2000);
}

/// Makes shots/shot.blend: a cube that shines in the colour of textures/red.png, which belongs to the library
/// parts/cube.blend. The scene names the library by its absolute path, and the library the texture relative to itself.
/// Two pictures of a sequence and two tiles lie beside the scene; gone.png does not. shots/early.blend is the same with every
/// fifth of the frames 0 to 5.
inline QByteArray MakeShot(const QString& folder)
{
    return RunBlender(folder, QString::fromLatin1(R"py(
image = Picture("textures/red.png", (1, 0, 0, 1))
material = bpy.data.materials["Material"]
nodes, links = material.node_tree.nodes, material.node_tree.links
texture = nodes.new("ShaderNodeTexImage")
texture.image = image
light = nodes.new("ShaderNodeEmission")
links.new(texture.outputs["Color"], light.inputs["Color"])
links.new(light.outputs["Emission"], nodes["Material Output"].inputs["Surface"])
Save("parts/cube.blend")
image.filepath = "//../textures/red.png"
Save("parts/cube.blend")
bpy.ops.wm.read_factory_settings()
bpy.data.objects.remove(bpy.data.objects["Cube"])
with bpy.data.libraries.load(f"{folder}/parts/cube.blend", link=True) as (source, target):
    target.objects = ["Cube"]
scene = bpy.context.scene
scene.collection.objects.link(target.objects[0])
scene.cycles.samples = 1
scene.render.engine = "CYCLES"
scene.render.resolution_x, scene.render.resolution_y, scene.render.resolution_percentage = 96, 72, 50
scene.frame_start, scene.frame_end = 3, 4
for name in ("smoke_0001", "smoke_0002", "tile.1001", "tile.1002"):
    bpy.data.images.remove(Picture(f"shots/{name}.png", (1, 1, 1, 1)))
for name, source in (("smoke_0001", "SEQUENCE"), ("tile.<UDIM>", "TILED"), ("gone", "FILE")):
    image = bpy.data.images.new(name, 8, 8)
    image.source = source
    image.filepath = f"//{name}.png"
    image.use_fake_user = True
Save("shots/shot.blend")
scene.frame_start, scene.frame_end, scene.frame_step = 0, 5, 5
Save("shots/early.blend")
)py"));
}
