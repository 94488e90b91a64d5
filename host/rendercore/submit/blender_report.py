"""Reports what a Blender scene needs, as JSON. Arguments behind "--": the scene, and the file for the report.

No Python of the scene runs.
"""
import json
import os
import sys

import bpy


def absolute(path, block=None):
    return os.path.normpath(bpy.path.abspath(path, library=block.library if block else None))


def patterns():
    """Paths that match several files, with the kind of each pattern."""
    kinds = {"SEQUENCE": "sequence", "TILED": "tiles"}
    for block in [*bpy.data.images, *bpy.data.movieclips]:
        if block.source in kinds:
            yield absolute(block.filepath, block), kinds[block.source]
    for block in [*bpy.data.cache_files, *bpy.data.volumes]:
        if block.is_sequence:
            yield absolute(block.filepath, block), "sequence"


def files():
    names = bpy.utils.blend_paths(absolute=False, packed=False, local=False)
    paths = bpy.utils.blend_paths(absolute=True, packed=False, local=False)
    kinds = dict(patterns())
    # Scripts do not run at the farm, and caches are not single files.
    ignored = {absolute(text.filepath, text) for text in bpy.data.texts if text.filepath}
    ignored.update(folders())
    for name, path in zip(names, map(os.path.normpath, paths)):
        if path not in ignored:
            yield {"name": name, "path": path, "pattern": kinds.get(path, "")}


def folders():
    """Caches: physics caches lie beside the scene, fluid caches where their domain says."""
    name = os.path.splitext(os.path.basename(bpy.data.filepath))[0]
    yield os.path.join(os.path.dirname(bpy.data.filepath), "blendcache_" + name)
    for thing in bpy.data.objects:
        for modifier in thing.modifiers:
            domain = getattr(modifier, "domain_settings", None)
            if domain:
                yield absolute(domain.cache_directory, thing)


def report(path):
    bpy.ops.wm.open_mainfile(filepath=path, load_ui=False, use_scripts=False)
    scene = bpy.context.scene
    render = scene.render
    return {
        "files": list(files()),
        "folders": [folder for folder in folders() if os.path.isdir(folder)],
        "first_frame": scene.frame_start,
        "last_frame": scene.frame_end,
        "frame_step": scene.frame_step,
        "width": render.resolution_x * render.resolution_percentage // 100,
        "height": render.resolution_y * render.resolution_percentage // 100,
        "engine": render.engine,
    }


scene, target = sys.argv[sys.argv.index("--") + 1:]
try:
    result = report(scene)
except Exception as error:
    result = {"error": str(error).strip()}
with open(target, "w") as file:
    json.dump(result, file)
